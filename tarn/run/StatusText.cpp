#include <tarn/run/StatusText.hpp>

#include <fathom/VObjectStatus.hpp>

#include <loam/Ascii.hpp>
#include <loam/Utf8.hpp>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <system_error>

namespace Tarn {

namespace {

using Orla::StatusMarkup;

// Returns the length of the tag at the start of `text`, or 0 if it is not a tag.
std::size_t lengthOfTag(std::string_view text)
{
    const std::size_t first = text.substr(0, 2) == "</" ? 2 : 1;
    if (text.size() <= first || !(Loam::isLetter(text[first]) || (first == 1 && text[first] == '!')))
        return 0;
    char quote = 0;
    for (std::size_t i = first; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != 0) {
            if (c == quote)
                quote = 0;
        } else if ((c == '"' || c == '\'') && text[i - 1] == '=') {
            quote = c;
        } else if (c == '>') {
            return i + 1;
        }
    }
    return text.find('>') + 1; // an unclosed quote; 0 without a ">"
}

bool breaksTheLine(std::string_view tag)
{
    return tag.size() >= 4 && Loam::toLower(tag[1]) == 'b' && Loam::toLower(tag[2]) == 'r' && !Loam::isLetter(tag[3]);
}

// Excludes control characters, which could affect a terminal.
constexpr bool isPrintable(char32_t code) noexcept
{
    return code == '\t' || code == '\n' || (code >= 0x20 && code < 0x7F) || (code >= 0xA0 && code < 0xD800)
           || (code >= 0xE000 && code <= 0x10FFFF);
}

// Returns the character of the entity `name`, the text between "&" and ";", or 0 if it is
// unknown.
char32_t characterOf(std::string_view name)
{
    constexpr struct {
        std::string_view name;
        char32_t code;
    } entities[] = {{"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}, {"nbsp", ' '}};
    for (const auto& entity : entities) {
        if (name == entity.name)
            return entity.code;
    }
    if (name.size() < 2 || name[0] != '#')
        return 0;
    const bool isHexadecimal = Loam::toLower(name[1]) == 'x';
    const std::string_view digits = name.substr(isHexadecimal ? 2 : 1);
    std::uint32_t code = 0;
    const char* const last = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), last, code, isHexadecimal ? 16 : 10);
    return read.ec == std::errc{} && read.ptr == last && isPrintable(code) ? code : 0;
}

} // namespace

Severity severityOf(std::string_view text) noexcept
{
    if (text.ends_with(StatusMarkup::End)) {
        if (text.starts_with(StatusMarkup::StartOfError))
            return Severity::Error;
        if (text.starts_with(StatusMarkup::StartOfWarning))
            return Severity::Warning;
    }
    return Severity::Information;
}

std::string plainText(std::string_view text)
{
    std::string plain;
    // Found once, so a text of many "<" without a later ">" takes no longer.
    const std::size_t lastClosing = text.rfind('>');
    for (std::size_t i = 0; i < text.size();) {
        const std::string_view rest = text.substr(i);
        if (rest[0] == '<' && lastClosing != std::string_view::npos && i < lastClosing) {
            if (const std::size_t length = lengthOfTag(rest)) {
                if (breaksTheLine(rest.substr(0, length)))
                    plain += '\n';
                i += length;
                continue;
            }
        } else if (rest[0] == '&') {
            constexpr std::size_t longest = 10; // "&#x10FFFF;"
            const std::size_t end = rest.substr(0, longest).find(';');
            const bool hasEnd = end != std::string_view::npos;
            const char32_t code = hasEnd ? characterOf(rest.substr(1, end - 1)) : 0;
            if (code != 0) {
                Loam::appendUtf8(plain, code);
                i += end + 1;
                continue;
            }
        }
        plain += rest[0];
        ++i;
    }
    return plain;
}

} // namespace Tarn
