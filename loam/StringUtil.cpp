#include <loam/StringUtil.hpp>

#include <loam/Utf8.hpp>

namespace Loam::StringUtil {

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
    const auto addHex = [&shown](unsigned char byte) {
        constexpr char digits[] = "0123456789abcdef";
        shown += digits[byte >> 4];
        shown += digits[byte & 0xFu];
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char letter = text[i];
        const auto code = static_cast<unsigned char>(letter);
        if (letter == '\n') {
            shown += "\\n";
        } else if (letter == '\t') {
            shown += "\\t";
        } else if (letter == '\r') {
            shown += "\\r";
        } else if (code < 0x20 || code == 0x7F) {
            shown += "\\x";
            addHex(code);
        } else if (const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
                   code == 0xC2 && next >= 0x80 && next < 0xA0) {
            shown += "\\u00"; // the control characters U+0080 to U+009F
            addHex(next);
            ++i;
        } else if (letter == '\\') {
            shown += "\\\\";
        } else {
            shown += letter;
        }
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
