#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace Tarn {

/// A line on standard error, composed in a signal handler: nothing allocates or locks. Text
/// beyond the limit is dropped.
class EmergencyMessage {
public:
    EmergencyMessage& operator<<(std::string_view text) noexcept;

    /// Appends \p name in double quotes, with control characters as question marks.
    EmergencyMessage& appendName(std::string_view name) noexcept;

    /// Appends the running objects, such as `object "a"`, or only that of this thread if it runs
    /// one. Without any, appends what the program is doing, such as `loading "x.so"`. Returns
    /// false if there is neither.
    bool appendCulprit() noexcept;

    /// Writes the line.
    void write() noexcept;

private:
    bool appendObjects() noexcept;

    static constexpr std::size_t Limit = 1000;

    std::array<char, Limit + 1> m_text;
    std::size_t m_size = 0;
};

} // namespace Tarn
