#include <tarn/text/Utf8.hpp>

#include <algorithm>

namespace Tarn {

namespace {

bool isContinuation(char byte) noexcept
{
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

// Returns the length in bytes of the well-formed character at the start of `text`, or 0.
std::size_t characterLength(std::string_view text) noexcept
{
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80)
        return 1;
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (length == 0 || text.size() < length || !std::ranges::all_of(text.substr(1, length - 1), isContinuation))
        return 0;
    // Overlong, a surrogate, or beyond the last code point.
    const auto second = static_cast<unsigned char>(text[1]);
    if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second >= 0xA0) || (first == 0xF0 && second < 0x90)
        || (first == 0xF4 && second >= 0x90))
        return 0;
    return length;
}

} // namespace

std::size_t findInvalidUtf8(std::string_view text) noexcept
{
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = characterLength(text.substr(at));
        if (length == 0)
            return at;
        at += length;
    }
    return std::string_view::npos;
}

std::size_t countCharacters(std::string_view text) noexcept
{
    return text.size() - static_cast<std::size_t>(std::ranges::count_if(text, isContinuation));
}

std::string validUtf8(std::string_view text)
{
    std::string valid;
    for (std::size_t bad = 0; (bad = findInvalidUtf8(text)) != std::string_view::npos; text.remove_prefix(bad + 1))
        valid.append(text.substr(0, bad)).append("\uFFFD");
    return valid.append(text);
}

Place placeAt(std::string_view text, std::size_t position) noexcept
{
    const std::string_view before = text.substr(0, position);
    const std::string_view line = before.substr(before.rfind('\n') + 1); // npos + 1 is the start of the text
    return {static_cast<std::uint32_t>(1 + std::ranges::count(before, '\n')),
            static_cast<std::uint32_t>(1 + countCharacters(line))};
}

} // namespace Tarn
