#pragma once

#include <tarn/text/Faults.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace Tarn {

/// Where the first byte stands that is no part of a well-formed UTF-8 character;
/// `npos` if there is none.
std::size_t findInvalidUtf8(std::string_view text) noexcept;

inline bool isUtf8(std::string_view text) noexcept
{
    return findInvalidUtf8(text) == std::string_view::npos;
}

/// How many characters \p text has.
/// \pre It is well-formed, or a rough number will do.
std::size_t countCharacters(std::string_view text) noexcept;

/// \p text with each byte that is no part of a well-formed character replaced by the
/// character that stands for such.
std::string validUtf8(std::string_view text);

/// The line and the column, counted in characters, of the byte at \p position.
Place placeAt(std::string_view text, std::size_t position) noexcept;

} // namespace Tarn
