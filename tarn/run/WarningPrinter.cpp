#include <tarn/run/WarningPrinter.hpp>

#include <tarn/run/Progress.hpp>

#include <cstdio>

namespace Tarn {

namespace {

// Bounds the memory for messages that differ each time.
constexpr std::size_t MostRemembered = 10000;

} // namespace

void printLine(const std::string& line)
{
    Progress::hide();
    // Written in one piece because libraries may write at the same time.
    const std::string whole = line + '\n';
    std::fwrite(whole.data(), 1, whole.size(), stderr);
}

void say(const std::string& message)
{
    printLine("tarn: " + message);
}

WarningPrinter::~WarningPrinter() = default;

bool WarningPrinter::warned(const std::string& message)
{
    return print("warning: " + message);
}

bool WarningPrinter::failed(const std::string& message)
{
    return print("error: " + message);
}

bool WarningPrinter::print(const std::string& message)
{
    const auto found = m_counts.find(message);
    if (found != m_counts.end()) {
        ++found->second;
        return true;
    }
    if (m_counts.size() < MostRemembered)
        m_counts.emplace(message, 1);
    say(message);
    return true;
}

void WarningPrinter::printRepeats() const
{
    for (const auto& [message, count] : m_counts) {
        if (count > 1)
            say(message + " (" + std::to_string(count) + " times in all)");
    }
}

} // namespace Tarn
