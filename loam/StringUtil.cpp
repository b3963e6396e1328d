#include <loam/StringUtil.hpp>

#include <loam/Utf8.hpp>

namespace Loam::StringUtil {

namespace {

// Returns the end of the piece at \p start: the next separator or the end of the text.
std::size_t pieceEnd(std::string_view text, std::size_t start, char separator, char quote)
{
    if (quote == 0) {
        const auto found = text.find(separator, start);
        return found == std::string_view::npos ? text.size() : found;
    }
    bool quoted = false;
    for (std::size_t i = start; i != text.size(); ++i) {
        if (text[i] == separator && !quoted)
            return i;
        if (text[i] == quote)
            quoted = !quoted;
    }
    return text.size();
}

} // namespace

template<class Container>
std::size_t split(const std::string& text, Container& pieces, char separator, bool flag, char quote)
{
    std::size_t appended = 0;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = pieceEnd(text, start, separator, quote);
        if (flag || end != start) {
            pieces.emplace_back(text, start, end - start);
            ++appended;
        }
        start = end + 1;
    }
    return appended;
}

template LOAM_TEMPLATE std::size_t split(const std::string&, std::vector<std::string>&, char, bool, char);
template LOAM_TEMPLATE std::size_t split(const std::string&, std::list<std::string>&, char, bool, char);

std::string crop_before_first(const std::string& text, char c)
{
    return std::string(afterFirst(text, c));
}

std::string escaped(std::string_view text)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string shown;
    for (const char letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (letter == '\n') {
            shown += "\\n";
        } else if (letter == '\t') {
            shown += "\\t";
        } else if (letter == '\r') {
            shown += "\\r";
        } else if (code < 0x20 || code == 0x7F) {
            shown += "\\x";
            shown += digits[code >> 4];
            shown += digits[code & 0xFu];
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
