#pragma once

#include <trellis/Export.hpp>

namespace Orla {

#if defined(__GNUC__)
#    define TRELLIS_PRINTF(text, arguments) __attribute__((format(printf, text, arguments)))
#else
#    define TRELLIS_PRINTF(text, arguments)
#endif

/// Prints to standard output like `printf` if \p level is within the verbosity. Level 0 is
/// always shown; larger levels are more detailed.
TRELLIS_API void Vprintf(int level, const char* format, ...) TRELLIS_PRINTF(2, 3);

/// Returns true if `Vprintf` shows \p level. Check it first if the arguments are expensive.
TRELLIS_API bool isPrinted(int level) noexcept;

/// Returns the largest level that is shown; initially 0.
TRELLIS_API int verbosity() noexcept;
TRELLIS_API void setVerbosity(int level) noexcept;

} // namespace Orla
