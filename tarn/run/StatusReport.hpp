#pragma once

#include <tarn/Export.hpp>
#include <tarn/run/StatusText.hpp>

#include <trellis/Forward.hpp>
#include <trellis/ValuePool.hpp>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Tarn {

/// The failures and the status of the objects of a network, as plain text.
class TARN_API StatusReport {
public:
    struct Entry {
        std::string object; ///< its name
        Severity severity;
        std::string text;        ///< plain, with a line feed between lines
        std::size_t waiting = 0; ///< number of objects that wait for this failed one
    };

    /// The outputs with the statuses of announced objects.
    using Outputs = std::vector<std::pair<Orla::StrongPtr<Orla::VObject>, Orla::StrongPtr<Orla::VSlot>>>;

    /// Returns the outputs of the current network.
    static Outputs findOutputs();

    /// Collects the objects whose last update in \p pool failed, and the status of all other
    /// announced objects that report one: errors, then warnings, then the rest, each in the
    /// order of the objects. The status of a failed object may be from before the failure, and
    /// so may good news of an object that waits; both are left out.
    explicit StatusReport(const Orla::StrongPtr<Orla::ValuePool>& pool) : StatusReport{pool, findOutputs()} {}

    /// As above, with the outputs that `findOutputs` returned since the network changed.
    StatusReport(const Orla::StrongPtr<Orla::ValuePool>& pool, const Outputs& outputs);

    const std::vector<Entry>& entries() const noexcept { return m_entries; }

    bool hasErrors() const noexcept;

    /// Returns the entries of at least the severity \p least as lines, `OBJECT: error: TEXT`, one
    /// per line of a text. Of very many failures, the last ones are only counted.
    std::vector<std::string> lines(Severity least = Severity::Information) const;

private:
    std::vector<Entry> m_entries;
    std::size_t m_unlisted = 0; // failed objects
};

} // namespace Tarn
