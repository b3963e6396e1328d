#pragma once

#include <tarn/text/Faults.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace Tarn {

/// Returns the position of the first byte outside any well-formed UTF-8 character, or `npos`.
std::size_t findInvalidUtf8(std::string_view text) noexcept;

inline bool isUtf8(std::string_view text) noexcept
{
    return findInvalidUtf8(text) == std::string_view::npos;
}

/// Returns the number of characters in \p text; approximate if it is not well-formed.
std::size_t countCharacters(std::string_view text) noexcept;

/// Returns \p text with each byte outside any well-formed character replaced by U+FFFD.
std::string validUtf8(std::string_view text);

/// Returns the line and the column, in characters, of the byte at \p position.
Place placeAt(std::string_view text, std::size_t position) noexcept;

} // namespace Tarn
