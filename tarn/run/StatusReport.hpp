#pragma once

#include <tarn/run/StatusText.hpp>

#include <trellis/ValuePool.hpp>

#include <string>
#include <vector>

namespace Tarn {

/// The status of the objects of a network, as plain text.
class StatusReport {
public:
    struct Entry {
        std::string object;
        Severity severity;
        std::string text;
    };

    /// Collects the status in \p pool of all announced objects that report one: errors, then
    /// warnings, then the rest, each in the order of the objects.
    explicit StatusReport(const Orla::StrongPtr<Orla::ValuePool>& pool);

    const std::vector<Entry>& entries() const noexcept { return m_entries; }

    bool hasErrors() const noexcept;

    /// Returns the entries as lines, `OBJECT: error: TEXT`, one per line of a text.
    std::vector<std::string> lines() const;

private:
    std::vector<Entry> m_entries;
};

} // namespace Tarn
