#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Tarn {

/// Chooses which of many similar messages to show. Messages are similar if they begin alike
/// apart from texts in quotes and digits.
class SimilarMessages {
public:
    /// Number of similar messages to show.
    static constexpr std::size_t MostShown = 20;

    /// Counts \p message. Returns true if it must be shown.
    bool add(const std::string& message);

    /// Returns one line for each group with messages that were not shown: their number, and
    /// one that was shown. The groups are sorted.
    std::vector<std::string> summary() const;

private:
    struct Group {
        std::size_t count = 0;
        std::string example;
    };

    std::map<std::string, Group> m_groups;
};

} // namespace Tarn
