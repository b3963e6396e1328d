#include <tarn/run/StatusReport.hpp>

#include <tarn/text/Messages.hpp>

#include <fathom/VObjectStatus.hpp>

#include <trellis/VObject.hpp>

#include <loam/StringUtil.hpp>

#include <algorithm>
#include <optional>
#include <typeinfo>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Orla::VObjectStatus;

// Errors come first.
int rankOf(const StatusReport::Entry& entry) noexcept
{
    return -static_cast<int>(entry.severity);
}

} // namespace

StatusReport::StatusReport(const StrongPtr<Orla::ValuePool>& pool)
{
    Orla::VObject::forEachOutput(typeid(VObjectStatus),
                                 [&](const StrongPtr<Orla::VObject>& object, const StrongPtr<Orla::VSlot>& output) {
                                     const std::optional<VObjectStatus> status = output->get<VObjectStatus>(pool);
                                     if (!status)
                                         return;
                                     const std::string text = plainText(status->text);
                                     const Severity severity = severityOf(status->text);
                                     const bool isBlank = text.find_first_not_of(" \t\r\n") == std::string::npos;
                                     if (!isBlank || severity != Severity::Information)
                                         m_entries.push_back({object->Name(), severity, text});
                                 });
    std::ranges::stable_sort(m_entries, {}, rankOf);
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
    }
    return lines;
}

} // namespace Tarn
