#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace Tarn {

/// Shows the progress of a run in a line on standard error, if that is a terminal.
class Progress {
public:
    using Clock = std::chrono::steady_clock;

    /// For a run of \p count steps or cases.
    explicit Progress(std::uint64_t count);

    /// Removes the line.
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Shows that \p done steps or cases are complete, of which \p failures failed. Draws at most
    /// ten times per second.
    void show(std::uint64_t done, std::uint64_t failures = 0);

    /// Removes the line until it is next shown, to make room for a message.
    static void hide();

    /// Returns the line for \p done of \p count after \p seconds, at most \p width columns: bar,
    /// number, number per second, time left, failures. Parts that do not fit are left out.
    static std::string line(std::uint64_t done, std::uint64_t count, double seconds, std::size_t width,
                            std::uint64_t failures = 0);

private:
    std::uint64_t m_count;
    bool m_isTerminal;
    Clock::time_point m_begin;
    Clock::time_point m_last;
};

} // namespace Tarn
