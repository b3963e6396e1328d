#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace Tarn {

/// A line on standard error that says how far a run is: nothing unless that is a
/// terminal.
class Progress {
public:
    using Clock = std::chrono::steady_clock;

    /// For a run of \p steps.
    explicit Progress(std::uint64_t steps);

    /// Takes the line away.
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// \p done steps are over. Draws some times a second at most.
    void show(std::uint64_t done);

    /// Takes the line away for now, so that a message can be printed.
    static void hide();

    /// The line for \p done of \p steps after \p seconds, in \p width columns at
    /// most: bar, steps, steps a second, time left; what has no room is left out.
    static std::string line(std::uint64_t done, std::uint64_t steps, double seconds, std::size_t width);

private:
    std::uint64_t m_steps;
    bool m_isTerminal;
    Clock::time_point m_begin;
    Clock::time_point m_last;
};

} // namespace Tarn
