#pragma once

#include <tarn/study/CaseResult.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace Tarn {

/// Ascending numbers of cases as a short text: "0-41, 43".
class CaseList {
public:
    /// Adds a number, which is not less than any before. Equal ones count once.
    void add(std::uint64_t number);

    std::uint64_t size() const noexcept { return m_size; }

    /// Returns the numbers, consecutive ones as ranges. Of many, the last ones are only counted:
    /// "0, 2, 4 and 997 more".
    std::string text() const;

private:
    struct Range {
        std::uint64_t first;
        std::uint64_t last;
    };

    std::vector<Range> m_ranges; // as many as are shown
    std::uint64_t m_last = 0;
    std::uint64_t m_listed = 0;
    std::uint64_t m_size = 0;
};

/// Summarizes the results of a study.
class StudyReport {
public:
    /// Adds the result of a case with a larger number than all before.
    void add(const CaseResult& result);

    std::uint64_t steps() const noexcept { return m_steps; }
    const CaseList& failed() const noexcept { return m_failed; }

    /// Returns one line per different message of the results, with the cases that it is from, in
    /// the order of their first occurrence. Of very many, the last ones are only counted.
    std::vector<std::string> lines() const;

private:
    struct Message {
        std::string text;
        CaseList cases;
    };

    std::uint64_t m_cases = 0;
    std::uint64_t m_steps = 0;
    CaseList m_failed;
    std::vector<Message> m_messages;
    std::unordered_map<std::string, std::size_t> m_places; // of messages, by text
    std::uint64_t m_unlisted = 0;
};

} // namespace Tarn
