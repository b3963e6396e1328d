#include <tarn/run/WarningPrinter.hpp>

#include <tarn/run/Progress.hpp>
#include <tarn/text/Messages.hpp>

#include <cstdio>
#include <string_view>
#include <utility>

namespace Tarn {

namespace {

// Bounds the memory for messages that differ each time.
constexpr std::size_t MostRemembered = 10000;

constexpr std::size_t MostNamed = 12;

// Between the object and the reason in the scheduler's messages.
constexpr std::string_view Failed = " failed: ";

std::mutex& sinkMutex()
{
    static std::mutex theMutex;
    return theMutex;
}

std::function<void(const std::string&)>& sink()
{
    static std::function<void(const std::string&)> theSink;
    return theSink;
}

} // namespace

void printLine(const std::string& line)
{
    if (const std::lock_guard lock{sinkMutex()}; sink())
        sink()(onOneLine(line));
    else
        writeLine(line);
}

void setMessageSink(std::function<void(const std::string&)> function)
{
    const std::lock_guard lock{sinkMutex()};
    sink() = std::move(function);
}

void writeLine(const std::string& line)
{
    Progress::hide();
    // Written in one piece because libraries may write at the same time.
    const std::string whole = onOneLine(line) + '\n';
    std::fwrite(whole.data(), 1, whole.size(), stderr);
}

void say(const std::string& message)
{
    printLine("tarn: " + message);
}

WarningPrinter::WarningPrinter() noexcept
{
    s_last = this;
}

WarningPrinter::~WarningPrinter()
{
    WarningPrinter* self = this;
    s_last.compare_exchange_strong(self, nullptr);
}

void WarningPrinter::forget()
{
    const std::lock_guard lock{m_mutex};
    m_counts.clear();
    m_failures.clear();
    m_similar.clear();
}

bool WarningPrinter::warned(const std::string& message)
{
    return print("warning: ", message);
}

bool WarningPrinter::failed(const std::string& message)
{
    return HeldFailures::hold(*this, message) || printFailure(message);
}

bool WarningPrinter::printFailure(const std::string& message)
{
    {
        const std::lock_guard lock{m_mutex};
        if (isKnownFailure(message))
            return true;
    }
    return print("error: ", message);
}

bool WarningPrinter::print(const std::string& kind, const std::string& message)
{
    const std::lock_guard lock{m_mutex};
    if (const auto found = m_counts.find(kind + message); found != m_counts.end()) {
        ++found->second;
        return true;
    }
    if (m_counts.size() < MostRemembered)
        m_counts.emplace(kind + message, 1);
    if (m_similar[kind].add(message))
        say(kind + message);
    return true;
}

bool WarningPrinter::isKnownFailure(const std::string& message)
{
    const std::size_t end = message.find(Failed);
    if (end == std::string::npos)
        return false;
    const std::string object = message.substr(0, end);
    const std::string reason = message.substr(end + Failed.size());
    const auto found = m_failures.find(reason);
    if (found == m_failures.end()) {
        if (m_failures.size() < MostRemembered)
            m_failures.emplace(reason, Failure{object, {}});
        return false;
    }
    if (found->second.first == object)
        return false;
    found->second.others.insert(object);
    return true;
}

void WarningPrinter::printRepeats() const
{
    const std::lock_guard lock{m_mutex};
    for (const auto& [reason, failure] : m_failures) {
        if (failure.others.empty())
            continue;
        std::string list;
        std::size_t listed = 0;
        for (const std::string& object : failure.others) {
            if (listed++ == MostNamed)
                break;
            list += (list.empty() ? "" : ", ") + object;
        }
        if (failure.others.size() > MostNamed)
            list += " and " + std::to_string(failure.others.size() - MostNamed) + " more";
        say("error: " + list + " failed for the same reason as " + failure.first);
    }
    for (const auto& [message, count] : m_counts) {
        if (count > 1)
            say(message + " (" + std::to_string(count) + " times in all)");
    }
    for (const auto& [kind, similar] : m_similar) {
        for (const std::string& more : similar.summary())
            say(kind + more);
    }
}

HeldFailures::HeldFailures() noexcept
{
    s_current = this;
}

HeldFailures::~HeldFailures()
{
    s_current = nullptr;
    for (const std::string& message : m_messages)
        m_printer->printFailure(message);
}

void HeldFailures::drop(const std::string& text)
{
    const std::lock_guard lock{m_mutex};
    std::erase_if(m_messages, [&text](const std::string& message) { return message.find(text) != std::string::npos; });
}

bool HeldFailures::hold(WarningPrinter& printer, const std::string& message)
{
    HeldFailures* const held = s_current;
    if (!held)
        return false;
    const std::lock_guard lock{held->m_mutex};
    held->m_printer = Loam::StrongPtr<WarningPrinter>{&printer};
    held->m_messages.push_back(message);
    return true;
}

} // namespace Tarn
