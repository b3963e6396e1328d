#include <trellis/VCreationPreferences.hpp>

#include <algorithm>

namespace Orla {

VCreationPreferences::VCreationPreferences(const std::string& purpose, const std::string& wish)
{
    add(purpose);
    add(wish);
}

VCreationPreferences::~VCreationPreferences() = default;

bool VCreationPreferences::add(const std::string& word)
{
    if (word.empty() || std::ranges::find(m_words, word) != m_words.end())
        return false;
    m_words.push_back(word);
    return true;
}

bool VCreationPreferences::contains(const std::string& word) const
{
    return std::ranges::find(m_words, word) != m_words.end();
}

double VCreationPreferences::weight(const VCreationPreferences& wanted) const
{
    const auto missing =
        std::ranges::count_if(wanted.m_words, [this](const std::string& word) { return !contains(word); });
    return static_cast<double>(missing) + m_handicap;
}

} // namespace Orla
