#pragma once

#include <loam/Export.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace Loam {

/// Returns the number of bytes of the well-formed character at the start of \p text; 0 if
/// \p text is empty or does not begin with one.
LOAM_API std::size_t characterLength(std::string_view text) noexcept;

/// Returns the position of the first byte outside any well-formed UTF-8 character, or `npos`.
LOAM_API std::size_t findInvalidUtf8(std::string_view text) noexcept;

inline bool isUtf8(std::string_view text) noexcept
{
    return findInvalidUtf8(text) == std::string_view::npos;
}

/// Returns \p text with each byte outside any well-formed character replaced by U+FFFD.
LOAM_API std::string validUtf8(std::string_view text);

/// Appends the UTF-8 encoding of the character with the code point \p code.
/// \pre \p code is at most 0x10FFFF and not a surrogate.
LOAM_API void appendUtf8(std::string& text, char32_t code);

/// Returns the number of characters in \p text; approximate if it is not well-formed.
LOAM_API std::size_t countCharacters(std::string_view text) noexcept;

/// Returns true for the second and later bytes of a character. A text may be cut before any
/// other byte.
constexpr bool isContinuation(char byte) noexcept
{
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

} // namespace Loam
