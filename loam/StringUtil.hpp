#pragma once

#include <loam/Export.hpp>

#include <concepts>
#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace Loam::StringUtil {

/// The containers that `split` is instantiated for.
template<class T>
concept PieceContainer = std::same_as<T, std::vector<std::string>> || std::same_as<T, std::list<std::string>>;

/// Splits \p text at each separator, appends the pieces to \p pieces and returns
/// the number of pieces appended.
///
/// Empty pieces at the start and in the middle are kept if \p flag is set and
/// dropped otherwise. An empty last piece is always dropped: "1,2," has two
/// pieces, "" has none. If \p quote is not 0, separators between two quotes do not
/// split; the quotes stay in the piece, and an unclosed quote extends to the end
/// of the text.
///
/// \pre \p text is not one of the strings in \p pieces.
template<PieceContainer Container>
std::size_t split(const std::string& text, Container& pieces, char separator, bool flag = true, char quote = 0);

extern template LOAM_EXTERN_TEMPLATE std::size_t split(const std::string&, std::vector<std::string>&, char, bool, char);
extern template LOAM_EXTERN_TEMPLATE std::size_t split(const std::string&, std::list<std::string>&, char, bool, char);

/// Returns the position of the first \p c in \p text, or `npos`. If \p quote is not 0, a \p c
/// between two quotes, or after an unclosed one, does not count.
LOAM_API std::size_t findUnquoted(std::string_view text, char c, char quote) noexcept;

/// Calls \p action with each piece of \p text between separators. Empty pieces count, except
/// for an empty last one; an empty text has no pieces. With \p quote, as `findUnquoted`.
template<class Action>
void forEachPiece(std::string_view text, char separator, Action&& action, char quote = 0)
{
    while (!text.empty()) {
        const std::size_t end = findUnquoted(text, separator, quote);
        action(text.substr(0, end));
        if (end == std::string_view::npos)
            return;
        text.remove_prefix(end + 1);
    }
}

/// Returns the part of \p text after the first \p c, or all of it if it has no \p c.
LOAM_API std::string crop_before_first(const std::string& text, char c);

/// Like crop_before_first, without a copy: the result points into \p text.
constexpr std::string_view afterFirst(std::string_view text, char c) noexcept
{
    return text.substr(text.find(c) + 1); // npos + 1 is 0
}

/// Returns the part of \p text after the last \p c, or all of it if it has no \p c.
constexpr std::string_view afterLast(std::string_view text, char c) noexcept
{
    return text.substr(text.rfind(c) + 1); // npos + 1 is 0
}

/// Returns \p text with control characters, direction marks, bytes that are not UTF-8, and
/// backslashes escaped, so a name cannot break a line of output, control the terminal or
/// change the order of the text around it.
LOAM_API std::string escaped(std::string_view text);

/// Returns true if \p character, one character in UTF-8, controls a terminal, breaks a line or
/// changes the direction of the text around it. `escaped` replaces such characters.
LOAM_API bool isControl(std::string_view character) noexcept;

/// Returns \p text with the control characters and direction marks beyond ASCII written as
/// `\uXXXX`, as strings of JSON and TOML allow. Changes nothing else.
LOAM_API std::string unicodeEscaped(std::string_view text);

/// Returns \p message as `escaped`, but keeps its backslashes: names in messages may already be
/// escaped.
LOAM_API std::string onOneLine(std::string_view message);

/// Like `escaped`, for messages: cuts a text of more than 200 bytes at a character
/// boundary and appends "...".
LOAM_API std::string printable(std::string_view text);

} // namespace Loam::StringUtil
