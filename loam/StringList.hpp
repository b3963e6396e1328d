#pragma once

#include <loam/Export.hpp>
#include <loam/StrongPtr.hpp>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Loam {

/// A list of strings in insertion order; the base of all classes that offer names
/// to choose from.
class LOAM_API StringList : public ReferenceBase<StringList> {
public:
    using value_type = std::string;
    using const_iterator = std::vector<std::string>::const_iterator;

    /// Returned by `find` for a string that is not in the list.
    static constexpr std::size_t npos = ~std::size_t{0};

    StringList();

    /// Splits \p text at each \p separator. Empty pieces are kept, except for an empty
    /// last piece; an empty text has no pieces.
    StringList(const std::string& text, char separator);

    /// Takes the strings in order. Implicit, so a function that takes a list accepts
    /// `{"a", "b"}`.
    StringList(std::initializer_list<std::string> strings);

    StringList(const StringList& other);
    StringList& operator=(const StringList& other);
    ~StringList() override;

    std::size_t size() const noexcept { return m_strings.size(); }
    bool empty() const noexcept { return m_strings.empty(); }

    /// \pre \p index is less than `size()`.
    const std::string& operator[](std::size_t index) const { return m_strings[index]; }

    const_iterator begin() const noexcept { return m_strings.begin(); }
    const_iterator end() const noexcept { return m_strings.end(); }

    /// Returns the position of the first string equal to \p string byte by byte, or `npos`.
    std::size_t find(std::string_view string) const noexcept;
    bool contains(std::string_view string) const noexcept { return find(string) != npos; }

    /// Appends \p string; duplicates are allowed.
    void append(std::string string) { m_strings.push_back(std::move(string)); }

    /// Removes every occurrence of \p string and returns the number removed.
    std::size_t remove(const std::string& string);

    void clear() noexcept { m_strings.clear(); }

    /// Returns true for the same strings in the same order.
    friend bool operator==(const StringList& a, const StringList& b) noexcept { return a.m_strings == b.m_strings; }

private:
    std::vector<std::string> m_strings;
};

} // namespace Loam
