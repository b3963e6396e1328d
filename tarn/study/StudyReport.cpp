#include <tarn/study/StudyReport.hpp>

#include <tarn/text/Messages.hpp>

namespace Tarn {

namespace {

constexpr std::size_t MostRanges = 12;

// Bounds the memory for messages that differ in each case.
constexpr std::size_t MostMessages = 100;

} // namespace

void CaseList::add(std::uint64_t number)
{
    if (m_size > 0 && number == m_last)
        return;
    ++m_size;
    m_last = number;
    if (!m_ranges.empty() && m_ranges.back().last + 1 == number && m_listed + 1 == m_size)
        m_ranges.back().last = number;
    else if (m_ranges.size() < MostRanges)
        m_ranges.push_back({number, number});
    else
        return;
    ++m_listed;
}

std::string CaseList::text() const
{
    std::string text;
    for (const Range& range : m_ranges) {
        if (!text.empty())
            text += ", ";
        text += std::to_string(range.first);
        if (range.last > range.first)
            text += (range.last == range.first + 1 ? ", " : "-") + std::to_string(range.last);
    }
    if (m_listed < m_size)
        text += " and " + std::to_string(m_size - m_listed) + " more";
    return text;
}

void StudyReport::add(const CaseResult& result)
{
    ++m_cases;
    m_steps += result.rows.size();
    if (result.hasFailed)
        m_failed.add(result.number);
    for (const std::string& text : result.messages) {
        auto found = m_places.find(text);
        if (found == m_places.end()) {
            if (m_messages.size() == MostMessages) {
                ++m_unlisted;
                continue;
            }
            found = m_places.emplace(text, m_messages.size()).first;
            m_messages.push_back({text, {}});
        }
        m_messages[found->second].cases.add(result.number);
    }
}

std::vector<std::string> StudyReport::lines() const
{
    std::vector<std::string> lines;
    for (const Message& message : m_messages) {
        const std::size_t indent = message.text.starts_with("  ") ? 0 : 2;
        const std::string cases = message.cases.size() == m_cases ? "all cases"
                                  : message.cases.size() == 1     ? "case " + message.cases.text()
                                                                  : "cases " + message.cases.text();
        lines.push_back(std::string(indent, ' ') + message.text + " (" + cases + ")");
    }
    if (m_unlisted > 0)
        lines.push_back("  " + counted(m_unlisted, "more message"));
    return lines;
}

} // namespace Tarn
