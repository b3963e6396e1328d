#include <trellis/VCreationPreferences.hpp>

#include <algorithm>

namespace Orla {

namespace {

std::atomic<std::uint64_t> changes{0};

} // namespace

std::uint64_t VCreationPreferences::changesOfWatched() noexcept
{
    return changes.load(std::memory_order_acquire);
}

// Copies the words, but not whether a directory watches them.
VCreationPreferences::VCreationPreferences(const VCreationPreferences& other)
    : InterfaceBase{other}, m_words{other.m_words}, m_handicap{other.m_handicap}
{
}

VCreationPreferences& VCreationPreferences::operator=(const VCreationPreferences& other)
{
    m_words = other.m_words;
    m_handicap = other.m_handicap;
    if (m_isWatched.load(std::memory_order_relaxed))
        changes.fetch_add(1, std::memory_order_release);
    return *this;
}

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
    if (m_isWatched.load(std::memory_order_relaxed))
        changes.fetch_add(1, std::memory_order_release);
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
