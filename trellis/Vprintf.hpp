#pragma once

#include <trellis/Export.hpp>

namespace Orla {

#if defined(__GNUC__)
#    define TRELLIS_PRINTF(text, arguments) __attribute__((format(printf, text, arguments)))
#else
#    define TRELLIS_PRINTF(text, arguments)
#endif

/// Prints to standard output as `printf` does, if \p level is within the
/// verbosity: level 0 is always shown, larger levels are more detailed.
TRELLIS_API void Vprintf(int level, const char* format, ...) TRELLIS_PRINTF(2, 3);

/// True if `Vprintf` shows \p level, for callers whose arguments cost something.
TRELLIS_API bool isPrinted(int level) noexcept;

/// The largest level that is shown; 0 at first.
TRELLIS_API int verbosity() noexcept;
TRELLIS_API void setVerbosity(int level) noexcept;

} // namespace Orla
