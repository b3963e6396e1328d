#pragma once

#include <loam/Export.hpp>

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace Loam::StringUtil {

/// Appends the pieces of \p text between separators to \p pieces and returns
/// how many it appended.
///
/// Empty pieces at the start and in the middle are kept if \p flag is set and
/// dropped otherwise; an empty last piece is always dropped, so that "1,2," has
/// two pieces and "" none. With a \p quote character, separators between two of
/// it do not split; the quotes stay in the piece, and one that is never closed
/// reaches to the end of the text.
///
/// \pre \p text is not one of the strings in \p pieces.
template<class Container>
std::size_t split(const std::string& text, Container& pieces, char separator, bool flag = true, char quote = 0);

extern template LOAM_EXTERN_TEMPLATE std::size_t split(const std::string&, std::vector<std::string>&, char, bool, char);
extern template LOAM_EXTERN_TEMPLATE std::size_t split(const std::string&, std::list<std::string>&, char, bool, char);

/// The part of \p text after the first \p c, or all of it if there is none.
LOAM_API std::string crop_before_first(const std::string& text, char c);

/// As crop_before_first, without a copy: the result points into \p text.
constexpr std::string_view afterFirst(std::string_view text, char c) noexcept
{
    const auto found = text.find(c);
    return found == std::string_view::npos ? text : text.substr(found + 1);
}

/// \p text with control characters and backslashes escaped, so that no name can
/// break a line of output or reach the terminal.
LOAM_API std::string escaped(std::string_view text);

/// As `escaped`, for messages: texts of more than some hundred bytes are cut, with
/// dots at the end.
LOAM_API std::string printable(std::string_view text);

} // namespace Loam::StringUtil
