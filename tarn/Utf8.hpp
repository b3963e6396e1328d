#pragma once

#include <tarn/Faults.hpp>

#include <cstddef>
#include <string_view>

namespace Tarn {

/// Where the first byte stands that is no part of a well-formed UTF-8 character;
/// `npos` if there is none.
std::size_t findInvalidUtf8(std::string_view text) noexcept;

/// The line and the column, counted in characters, of the byte at \p position.
Place placeAt(std::string_view text, std::size_t position) noexcept;

} // namespace Tarn
