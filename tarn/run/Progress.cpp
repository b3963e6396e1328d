#include <tarn/run/Progress.hpp>

#include <tarn/text/Messages.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace Tarn {

namespace {

constexpr std::chrono::milliseconds Pause{100};
constexpr std::size_t WidestBar = 40;
constexpr std::size_t NarrowestBar = 5;
constexpr std::size_t UsualWidth = 80;

bool isShown = false;

std::size_t terminalWidth()
{
    winsize size{};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : UsualWidth;
}

// "45s", "3m 20s", "2h 5m".
std::string duration(double seconds)
{
    if (!(seconds < 360'000))
        return "long";
    const auto whole = static_cast<std::uint64_t>(std::ceil(seconds));
    if (whole < 60)
        return std::to_string(whole) + "s";
    if (whole < 3600)
        return std::to_string(whole / 60) + "m " + std::to_string(whole % 60) + "s";
    return std::to_string(whole / 3600) + "h " + std::to_string(whole % 3600 / 60) + "m";
}

} // namespace

Progress::Progress(std::uint64_t count)
    : m_count{count}, m_isTerminal{::isatty(STDERR_FILENO) == 1}, m_begin{Clock::now()}, m_last{m_begin}
{
}

Progress::~Progress()
{
    hide();
}

void Progress::hide()
{
    if (isShown)
        std::fputs("\r\x1b[K", stderr);
    isShown = false;
}

void Progress::show(std::uint64_t done, std::uint64_t failures)
{
    if (!m_isTerminal)
        return;
    const auto now = Clock::now();
    if (now - m_last < Pause)
        return;
    m_last = now;
    isShown = true;
    const double seconds = std::chrono::duration<double>(now - m_begin).count();
    // The last column stays free: some terminals wrap the line there.
    std::fprintf(stderr, "\r\x1b[K%s", line(done, m_count, seconds, terminalWidth() - 1, failures).c_str());
    std::fflush(stderr);
}

std::string Progress::line(std::uint64_t done, std::uint64_t count, double seconds, std::size_t width,
                           std::uint64_t failures)
{
    const double fraction = count > 0 ? std::min(1.0, static_cast<double>(done) / static_cast<double>(count)) : 1;
    std::string text = std::to_string(done) + "/" + std::to_string(count);
    const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
    const auto append = [&](const std::string& more) {
        if (text.size() + more.size() <= width)
            text += more;
    };
    if (rate > 0) {
        append(", " + Loam::formatF(rate, rate < 10 ? 1 : 0) + "/s");
        append(", " + duration(static_cast<double>(count - std::min(done, count)) / rate) + " left");
    }
    if (failures > 0)
        append(", " + counted(failures, "failure"));
    if (width >= text.size() + NarrowestBar + 3) {
        const std::size_t room = std::min(WidestBar, width - text.size() - 3);
        const auto full = static_cast<std::size_t>(std::floor(fraction * static_cast<double>(room)));
        text = "[" + std::string(full, '#') + std::string(room - full, '.') + "] " + text;
    }
    return text.substr(0, width);
}

} // namespace Tarn
