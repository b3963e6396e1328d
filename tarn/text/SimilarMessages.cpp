#include <tarn/text/SimilarMessages.hpp>

#include <tarn/text/Messages.hpp>

#include <loam/Ascii.hpp>

#include <string_view>

namespace Tarn {

namespace {

// Messages begin with the place and the problem. What follows may differ each time.
constexpr std::size_t ComparedLength = 32;

// Bounds the memory for messages that are not similar.
constexpr std::size_t MostGroups = 10000;

std::string beginningOf(std::string_view message)
{
    std::string beginning;
    bool isQuoted = false;
    for (std::size_t at = 0; at < message.size() && beginning.size() < ComparedLength; ++at) {
        const char letter = message[at];
        if (letter == '\\')
            ++at; // an escaped quote
        else if (letter == '"')
            isQuoted = !isQuoted;
        else if (!isQuoted && !Loam::isDigit(letter))
            beginning += letter;
    }
    return beginning;
}

} // namespace

bool SimilarMessages::add(const std::string& message)
{
    const std::string beginning = beginningOf(message);
    auto entry = m_groups.find(beginning);
    if (entry == m_groups.end()) {
        if (m_groups.size() == MostGroups)
            return true;
        entry = m_groups.emplace(beginning, Group{0, message}).first;
    }
    return ++entry->second.count <= MostShown;
}

std::vector<std::string> SimilarMessages::summary() const
{
    std::vector<std::string> lines;
    for (const auto& [beginning, group] : m_groups) {
        if (group.count > MostShown)
            lines.push_back(std::to_string(group.count - MostShown) + " more like: " + group.example);
    }
    return lines;
}

} // namespace Tarn
