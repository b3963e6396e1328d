#pragma once

#include <fathom/VObjectStatus.hpp>

#include <trellis/ValuePool.hpp>

#include <string>
#include <vector>

namespace Tarn {

/// What the objects of a network say of their state, as plain text.
class StatusReport {
public:
    struct Entry {
        std::string object;
        Orla::VObjectStatus::Severity severity;
        std::string text;
    };

    /// The states in \p pool of all announced objects that say something: errors,
    /// then warnings, then the rest, each in the order of the objects.
    explicit StatusReport(const Orla::StrongPtr<Orla::ValuePool>& pool);

    const std::vector<Entry>& entries() const noexcept { return m_entries; }

    bool hasErrors() const noexcept;

    /// One line an entry, `OBJECT: error: TEXT`.
    std::vector<std::string> lines() const;

private:
    std::vector<Entry> m_entries;
};

} // namespace Tarn
