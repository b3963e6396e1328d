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

    /// Appends \p text with a question mark for each control character, direction mark and byte
    /// that is not UTF-8.
    EmergencyMessage& appendForeign(std::string_view text) noexcept;

    /// Appends \p name as `appendForeign`, in double quotes.
    EmergencyMessage& appendName(std::string_view name) noexcept;

    /// Appends what this thread is doing with code of a library, such as ` in object "a"` or
    /// ` while loading "x.so"`; without either, the objects that run in other threads, such as
    /// ` while object "a", object "b" ran`. Returns false if nothing of this is going on.
    bool appendContext() noexcept;

    /// Appends the objects that run in any thread, such as `object "a", object "b"`; without
    /// any, the activity, such as `loading "x.so"`. Returns false if there is neither.
    bool appendRunning() noexcept;

    /// Writes the line.
    void write() noexcept;

private:
    bool appendObjects(std::string_view before) noexcept;
    bool appendActivity(std::string_view before) noexcept;
    void appendCase() noexcept;

    static constexpr std::size_t Limit = 1000;

    std::array<char, Limit + 1> m_text;
    std::size_t m_size = 0;
};

} // namespace Tarn
