#include <loam/Utf8.hpp>

#include <algorithm>

namespace Loam {

std::size_t characterLength(std::string_view text) noexcept
{
    if (text.empty())
        return 0;
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

std::size_t findInvalidUtf8(std::string_view text) noexcept
{
    for (std::size_t at = 0; at < text.size();) {
        // Most text is ASCII, for which a call per character takes longer than the rest.
        if (static_cast<unsigned char>(text[at]) < 0x80) {
            ++at;
            continue;
        }
        const std::size_t length = characterLength(text.substr(at));
        if (length == 0)
            return at;
        at += length;
    }
    return std::string_view::npos;
}

std::string validUtf8(std::string_view text)
{
    std::string valid;
    for (std::size_t bad = 0; (bad = findInvalidUtf8(text)) != std::string_view::npos; text.remove_prefix(bad + 1))
        valid.append(text.substr(0, bad)).append("\uFFFD");
    return valid.append(text);
}

void appendUtf8(std::string& text, char32_t code)
{
    const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    const auto appendRest = [&](unsigned shift) { append(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | code >> 6);
        appendRest(0);
    } else if (code < 0x10000) {
        append(0xE0 | code >> 12);
        appendRest(6);
        appendRest(0);
    } else {
        append(0xF0 | code >> 18);
        appendRest(12);
        appendRest(6);
        appendRest(0);
    }
}

std::size_t countCharacters(std::string_view text) noexcept
{
    return text.size() - static_cast<std::size_t>(std::ranges::count_if(text, isContinuation));
}

} // namespace Loam
