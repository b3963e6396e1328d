#include <tarn/text/DeepTomlKeys.hpp>

#include <tarn/text/Utf8.hpp>

#include <algorithm>

namespace Tarn {

namespace {

// The position behind the string that begins at `begin`. One that is not closed
// ends where the reader gives up on it: with the line or with the text.
std::size_t behindString(std::string_view text, std::size_t begin) noexcept
{
    const char quote = text[begin];
    const bool escapes = quote == '"';
    const bool multiLine = begin + 2 < text.size() && text[begin + 1] == quote && text[begin + 2] == quote;
    std::size_t at = begin + (multiLine ? 3 : 1);
    while (at < text.size()) {
        if (escapes && text[at] == '\\') {
            at += 2;
        } else if (!multiLine && (text[at] == quote || text[at] == '\n')) {
            return at + 1;
        } else if (multiLine && text.substr(at, 3) == std::string_view(text.data() + begin, 3)) {
            at += 3;
            // Up to two more quotes belong to the content before the end.
            for (int more = 0; more < 2 && at < text.size() && text[at] == quote; ++more)
                ++at;
            return at;
        } else {
            ++at;
        }
    }
    return text.size();
}

} // namespace

Place findDeepKey(std::string_view text) noexcept
{
    std::size_t parts = 1;
    std::size_t key = 0; // where the present one begins, blanks before it included
    for (std::size_t at = 0; at < text.size();) {
        switch (text[at]) {
        case '"':
        case '\'':
            at = behindString(text, at);
            continue;
        case '#':
            at = std::min(text.find('\n', at), text.size());
            continue;
        case '\n':
        case '=':
        case ',':
        case '[':
        case ']':
        case '{':
        case '}':
            parts = 1;
            key = at + 1;
            break;
        case '.':
            if (++parts > MaximalKeyParts)
                return placeAt(text, std::min(text.find_first_not_of(" \t", key), at));
            break;
        default:
            break;
        }
        ++at;
    }
    return {};
}

} // namespace Tarn
