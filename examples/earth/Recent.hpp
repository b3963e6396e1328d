#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace Earth {

/// Keeps the values that were used last, by name. It may be used in several threads.
template<class Value>
class Recent {
public:
    /// Returns the value called \p name; `make()` creates it if it is not kept. Keeps nothing
    /// if `make` throws. Another thread waits if it needs a value meanwhile.
    template<class Make>
    std::shared_ptr<const Value> get(const std::string& name, Make&& make)
    {
        const std::lock_guard lock{m_mutex};
        auto found =
            std::find_if(m_values.begin(), m_values.end(), [&](const auto& each) { return each.first == name; });
        if (found == m_values.end())
            found = m_values.emplace(m_values.end(), name, make());
        std::rotate(m_values.begin(), found, found + 1);
        if (m_values.size() > most)
            m_values.pop_back();
        return m_values.front().second;
    }

private:
    static constexpr std::size_t most = 8;

    std::mutex m_mutex;
    std::vector<std::pair<std::string, std::shared_ptr<const Value>>> m_values; // last used first
};

} // namespace Earth
