#pragma once

#include <tarn/text/Faults.hpp>

#include <cstddef>
#include <string_view>

namespace Tarn {

/// Maximum number of parts in a dotted key (`a.b.c`). Each part nests another table, and
/// the TOML reader destroys nested tables recursively: a key of about ten thousand parts
/// would overflow the stack.
inline constexpr std::size_t MaximalKeyParts = 16;

/// Returns the place of the first key in the TOML text \p text that has more parts; an empty
/// place if all keys are short enough.
Place findDeepKey(std::string_view text) noexcept;

} // namespace Tarn
