#pragma once

#include <tarn/text/Faults.hpp>

#include <cstddef>
#include <string_view>

namespace Tarn {

/// Parts that a dotted key (`a.b.c`) may have. Each makes a table inside the one
/// before, and the TOML reader destroys tables in tables recursively, so that a
/// key of some ten thousand parts would overflow the stack.
inline constexpr std::size_t MaximalKeyParts = 16;

/// Where the first key of more parts stands in the TOML text \p text; nowhere
/// if there is none.
Place findDeepKey(std::string_view text) noexcept;

} // namespace Tarn
