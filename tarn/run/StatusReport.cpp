#include <tarn/run/StatusReport.hpp>

#include <tarn/text/Messages.hpp>

#include <trellis/VObject.hpp>

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
                                     const std::string text = status->plainText();
                                     const bool isBlank = text.find_first_not_of(" \t\r\n") == std::string::npos;
                                     if (!isBlank || status->severity() != VObjectStatus::Severity::Information)
                                         m_entries.push_back({object->Name(), status->severity(), text});
                                 });
    std::ranges::stable_sort(m_entries, {}, rankOf);
}

bool StatusReport::hasErrors() const noexcept
{
    return !m_entries.empty() && m_entries.front().severity == VObjectStatus::Severity::Error;
}

std::vector<std::string> StatusReport::lines() const
{
    std::vector<std::string> lines;
    for (const Entry& entry : m_entries) {
        const char* kind = entry.severity == VObjectStatus::Severity::Error     ? "error: "
                           : entry.severity == VObjectStatus::Severity::Warning ? "warning: "
                                                                                : "";
        // One line per line of the text.
        std::size_t start = 0;
        while (true) {
            const auto end = entry.text.find('\n', start);
            lines.push_back("  " + printable(entry.object) + ": " + kind
                            + printable(std::string_view(entry.text).substr(start, end - start)));
            if (end == std::string::npos)
                break;
            start = end + 1;
        }
    }
    return lines;
}

} // namespace Tarn
