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
constexpr std::size_t MostFailures = 100;

// Errors come first.
int rankOf(const StatusReport::Entry& entry) noexcept
{
    return -static_cast<int>(entry.severity);
}

bool isBlank(const std::string& text) noexcept
{
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

} // namespace

StatusReport::Outputs StatusReport::findOutputs()
{
    Outputs outputs;
    Orla::VObject::forEachOutput(typeid(VObjectStatus), [&outputs](const StrongPtr<Orla::VObject>& object,
                                                                   const StrongPtr<Orla::VSlot>& output) {
        outputs.emplace_back(object, output);
    });
    return outputs;
}

StatusReport::StatusReport(const StrongPtr<Orla::ValuePool>& pool, const Outputs& outputs)
{
    using State = Orla::VScheduler::State;
    std::vector<Orla::VScheduler::Failure> failures = Orla::VScheduler::failures(pool);
    std::unordered_map<const Orla::VObject*, std::string*> reasons;
    for (Orla::VScheduler::Failure& failure : failures)
        reasons.emplace(failure.object.get(), &failure.reason);

    std::vector<Entry> reported;
    for (const auto& [object, output] : outputs) {
        const std::optional<VObjectStatus> status = output->get<VObjectStatus>(pool);
        if (!status)
            continue;
        const std::string text = plainText(status->text);
        const Severity severity = severityOf(status->text);
        if (const auto failed = reasons.find(object.get()); failed != reasons.end()) {
            // The object may have reported the reason before it returned false.
            if (failed->second->empty() && severity == Severity::Error)
                *failed->second = text;
        } else if (severity != Severity::Information
                   || (!isBlank(text) && Orla::VScheduler::stateOf(*object, pool) != State::Waiting)) {
            reported.push_back({object->Name(), severity, text});
        }
    }

    m_unlisted = failures.size() - std::min(failures.size(), MostFailures);
    failures.resize(failures.size() - m_unlisted);
    for (const Orla::VScheduler::Failure& failure : failures)
        m_entries.push_back({failure.object->Name(), Severity::Error,
                             isBlank(failure.reason) ? "its update failed" : failure.reason,
                             Orla::VScheduler::countWaiting(*failure.object, pool)});
    m_entries.insert(m_entries.end(), reported.begin(), reported.end());
    std::ranges::stable_sort(m_entries, {}, rankOf);
}

bool StatusReport::hasErrors() const noexcept
{
    return !m_entries.empty() && m_entries.front().severity == Severity::Error;
}

std::vector<std::string> StatusReport::lines(Severity least) const
{
    std::vector<std::string> lines;
    for (const Entry& entry : m_entries) {
        if (entry.severity < least)
            continue;
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
