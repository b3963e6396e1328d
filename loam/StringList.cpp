#include <loam/StringList.hpp>

#include <loam/StringUtil.hpp>

#include <algorithm>

namespace Loam {

StringList::StringList() = default;

StringList::StringList(const std::string& text, char separator)
{
    StringUtil::split(text, m_strings, separator);
}

StringList::StringList(std::initializer_list<std::string> strings) : m_strings(strings)
{
}

StringList::StringList(const StringList& other) = default;
StringList& StringList::operator=(const StringList& other) = default;
StringList::~StringList() = default;

std::size_t StringList::find(std::string_view string) const noexcept
{
    const auto found = std::ranges::find(m_strings, string);
    return found == end() ? npos : static_cast<std::size_t>(found - begin());
}

std::size_t StringList::remove(const std::string& string)
{
    // Copies the argument, because it may be one of the strings removed.
    return std::erase(m_strings, std::string(string));
}

} // namespace Loam
