#pragma once

// Classes of ASCII characters. Unlike the functions of <cctype>, these ignore the locale and
// accept every char.

namespace Loam {

constexpr bool isDigit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

constexpr bool isLetter(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Returns the lower-case form of an ASCII letter and every other character unchanged.
constexpr char toLower(char c) noexcept
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace Loam
