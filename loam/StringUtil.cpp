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

// Returns the code point of a character of two or three bytes, else 0. No control character
// beyond ASCII has another number of bytes.
char32_t codeOf(std::string_view character) noexcept
{
    const auto bits = [&](std::size_t index, unsigned mask) {
        return char32_t{static_cast<unsigned char>(character[index]) & mask};
    };
    if (character.size() == 2)
        return bits(0, 0x1Fu) << 6 | bits(1, 0x3Fu);
    if (character.size() == 3)
        return bits(0, 0x0Fu) << 12 | bits(1, 0x3Fu) << 6 | bits(2, 0x3Fu);
    return 0;
}

bool isControlBeyondAscii(char32_t code) noexcept
{
    return (code >= 0x80 && code < 0xA0) || code == 0x061C || code == 0x200E || code == 0x200F
           || (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

bool isControlOfAscii(char letter) noexcept
{
    return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F;
}

// Appends a character, or its number if it is a control character beyond ASCII.
void appendVisibly(std::string& shown, std::string_view character)
{
    const char32_t code = codeOf(character);
    if (!isControlBeyondAscii(code)) {
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

bool isControl(std::string_view character) noexcept
{
    return character.size() == 1 ? isControlOfAscii(character.front()) : isControlBeyondAscii(codeOf(character));
}

std::string escaped(std::string_view text)
{
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char letter = text[i];
        const auto code = static_cast<unsigned char>(letter);
        if (code >= 0x20 && code < 0x7F && letter != '\\') {
            shown += letter;
            ++i;
            continue;
        }
        const std::size_t length = characterLength(text.substr(i));
        if (letter == '\n') {
            shown += "\\n";
        } else if (letter == '\t') {
            shown += "\\t";
        } else if (letter == '\r') {
            shown += "\\r";
        } else if (isControlOfAscii(letter) || length == 0) {
            shown += "\\x";
            appendHex(shown, static_cast<unsigned char>(letter));
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

std::string onOneLine(std::string_view message)
{
    std::string shown;
    for (std::size_t end; (end = message.find('\\')) != std::string_view::npos; message.remove_prefix(end + 1))
        shown += escaped(message.substr(0, end)) + '\\';
    return shown + escaped(message);
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
