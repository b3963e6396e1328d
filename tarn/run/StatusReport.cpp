#include <tarn/run/StatusReport.hpp>

#include <tarn/text/Messages.hpp>

#include <fathom/VObjectStatus.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include <loam/StringUtil.hpp>

#include <algorithm>
#include <optional>
#include <typeinfo>
#include <unordered_map>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Orla::VObjectStatus;

// More failures of one run usually have one cause, and counting waiting objects takes time.
constexpr std::size_t MostListed = 100;

// Errors come first.
int rankOf(const StatusReport::Entry& entry) noexcept
{
    return -static_cast<int>(entry.severity);
}

bool isBlank(const std::string& text) noexcept
{
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

using Failures = std::unordered_map<const Orla::VObject*, std::string>; // reasons

Failures failuresOf(const StrongPtr<Orla::ValuePool>& pool)
{
    Failures failures;
    for (const Orla::VScheduler::Failure& failure : Orla::VScheduler::failures(pool))
        failures.emplace(failure.object.get(), failure.reason);
    return failures;
}

} // namespace

StatusReport::StatusReport(const StrongPtr<Orla::ValuePool>& pool)
{
    Failures failures = failuresOf(pool);
    Orla::VObject::forEachOutput(
        typeid(VObjectStatus), [&](const StrongPtr<Orla::VObject>& object, const StrongPtr<Orla::VSlot>& output) {
            const std::optional<VObjectStatus> status = output->get<VObjectStatus>(pool);
            if (!status)
                return;
            const std::string text = plainText(status->text);
            const Severity severity = severityOf(status->text);
            const auto failure = failures.find(object.get());
            if (failure != failures.end()) {
                // The object may have reported the reason before it returned false.
                if (failure->second.empty() && severity == Severity::Error)
                    failure->second = text;
            } else if (severity != Severity::Information
                       || (!isBlank(text)
                           && Orla::VScheduler::stateOf(*object, pool) != Orla::VScheduler::State::Waiting)) {
                m_entries.push_back({object->Name(), severity, text});
            }
        });
    addFailures(pool, failures);
    std::ranges::stable_sort(m_entries, {}, rankOf);
}

void StatusReport::addFailures(const StrongPtr<Orla::ValuePool>& pool,
                               const std::unordered_map<const Orla::VObject*, std::string>& reasons)
{
    std::vector<Entry> failed;
    for (const Orla::VScheduler::Failure& failure : Orla::VScheduler::failures(pool)) {
        if (failed.size() == MostListed) {
            ++m_unlisted;
            continue;
        }
        const auto reason = reasons.find(failure.object.get());
        const std::string text =
            reason == reasons.end() || isBlank(reason->second) ? "its update failed" : reason->second;
        failed.push_back(
            {failure.object->Name(), Severity::Error, text, Orla::VScheduler::countWaiting(*failure.object, pool)});
    }
    m_entries.insert(m_entries.begin(), failed.begin(), failed.end());
}

bool StatusReport::hasErrors() const noexcept
{
    return !m_entries.empty() && m_entries.front().severity == Severity::Error;
}

std::vector<std::string> StatusReport::lines() const
{
    std::vector<std::string> lines;
    for (const Entry& entry : m_entries) {
        const char* kind = entry.severity == Severity::Error     ? "error: "
                           : entry.severity == Severity::Warning ? "warning: "
                                                                 : "";
        // One line per line of the text; the line feed added keeps an empty last one.
        Loam::StringUtil::forEachPiece(entry.text + '\n', '\n', [&](std::string_view line) {
            lines.push_back("  " + printable(entry.object) + ": " + kind + printable(line));
        });
        if (entry.waiting > 0)
            lines.back() +=
                " (" + counted(entry.waiting, "object") + (entry.waiting == 1 ? " waits" : " wait") + " for it)";
    }
    if (m_unlisted > 0)
        lines.push_back("  error: " + counted(m_unlisted, "more object") + " failed");
    return lines;
}

} // namespace Tarn
