#include <loam/StringUtil.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>

namespace Loam::StringUtil {

namespace {

void appendHex(std::string& shown, unsigned char byte)
{
    constexpr char digits[] = "0123456789abcdef";
    shown += digits[byte >> 4];
    shown += digits[byte & 0xFu];
}

// Returns true for characters beyond ASCII that control a terminal, break a line, or change
// the direction of the text around them.
bool isControl(char32_t code) noexcept
{
    return (code >= 0x80 && code < 0xA0) || code == 0x061C || code == 0x200E || code == 0x200F
           || (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

// Appends a character, or its number if it is a control character.
void appendVisibly(std::string& shown, std::string_view character)
{
    char32_t code = 0;
    // No control character has more than three bytes.
    if (character.size() == 2)
        code = (static_cast<unsigned char>(character[0]) & 0x1Fu) << 6
               | (static_cast<unsigned char>(character[1]) & 0x3Fu);
    else if (character.size() == 3)
        code = (static_cast<unsigned char>(character[0]) & 0x0Fu) << 12
               | (static_cast<unsigned char>(character[1]) & 0x3Fu) << 6
               | (static_cast<unsigned char>(character[2]) & 0x3Fu);
    if (!isControl(code)) {
        shown += character;
        return;
    }
    shown += "\\u";
    appendHex(shown, static_cast<unsigned char>(code >> 8));
    appendHex(shown, static_cast<unsigned char>(code & 0xFFu));
}

} // namespace

std::size_t findUnquoted(std::string_view text, char c, char quote) noexcept
{
    if (quote == 0)
        return text.find(c);
    bool isQuoted = false;
    for (std::size_t i = 0; i != text.size(); ++i) {
        if (text[i] == c && !isQuoted)
            return i;
        if (text[i] == quote)
            isQuoted = !isQuoted;
    }
    return std::string_view::npos;
}

template<PieceContainer Container>
std::size_t split(const std::string& text, Container& pieces, char separator, bool flag, char quote)
{
    const std::size_t before = pieces.size();
    forEachPiece(
        text, separator,
        [&](std::string_view piece) {
            if (flag || !piece.empty())
                pieces.emplace_back(piece);
        },
        quote);
    return pieces.size() - before;
}

template LOAM_TEMPLATE std::size_t split(const std::string&, std::vector<std::string>&, char, bool, char);
template LOAM_TEMPLATE std::size_t split(const std::string&, std::list<std::string>&, char, bool, char);

std::string crop_before_first(const std::string& text, char c)
{
    return std::string(afterFirst(text, c));
}

std::string escaped(std::string_view text)
{
    std::string shown;
    for (std::size_t i = 0; i < text.size();) {
        const char letter = text[i];
        const auto code = static_cast<unsigned char>(letter);
        const std::size_t length = characterLength(text.substr(i));
        if (letter == '\n') {
            shown += "\\n";
        } else if (letter == '\t') {
            shown += "\\t";
        } else if (letter == '\r') {
            shown += "\\r";
        } else if (code < 0x20 || code == 0x7F || length == 0) {
            shown += "\\x";
            appendHex(shown, code);
        } else if (letter == '\\') {
            shown += "\\\\";
        } else {
            appendVisibly(shown, text.substr(i, length));
        }
        i += std::max<std::size_t>(length, 1);
    }
    return shown;
}

std::string unicodeEscaped(std::string_view text)
{
    std::string shown;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = std::max<std::size_t>(characterLength(text.substr(i)), 1);
        appendVisibly(shown, text.substr(i, length));
        i += length;
    }
    return shown;
}

std::string printable(std::string_view text)
{
    constexpr std::size_t LongestShown = 200;
    if (text.size() <= LongestShown)
        return escaped(text);
    std::size_t end = LongestShown;
    // Do not cut in the middle of a character.
    while (end > 0 && isContinuation(text[end]))
        --end;
    return escaped(text.substr(0, end)) + "...";
}

} // namespace Loam::StringUtil
