#include <tarn/text/DeepTomlKeys.hpp>

#include <tarn/text/PlacedText.hpp>

#include <algorithm>

namespace Tarn {

namespace {

// Returns the position after the string that begins at `begin`. An unclosed string ends
// where the reader gives up: at the end of the line or of the text.
std::size_t endOfString(std::string_view text, std::size_t begin) noexcept
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
            // Up to two more quotes belong to the content.
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
    std::size_t key = 0; // start of the current key, including leading blanks
    for (std::size_t at = 0; at < text.size();) {
        switch (text[at]) {
        case '"':
        case '\'':
            at = endOfString(text, at);
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
