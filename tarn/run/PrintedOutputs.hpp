#pragma once

#include <tarn/network/OutputReference.hpp>

#include <trellis/ValuePool.hpp>

#include <string>
#include <vector>

namespace Tarn {

class Faults;
class Session;

/// Outputs of a session's objects, whose values are printed one per line.
class PrintedOutputs {
public:
    /// Finds the outputs named by \p references, each "OBJECT.OUTPUT" or
    /// "OBJECT.OUTPUT.MEMBER". Adds a fault for each reference that names nothing.
    PrintedOutputs(const Session& session, const std::vector<std::string>& references, Faults& faults);

    bool empty() const noexcept { return m_outputs.empty(); }

    /// Returns one line per reference, in order, with the text form of its value in \p pool:
    /// `OBJECT.OUTPUT: TEXT`. Control characters, including line breaks, are escaped. A value
    /// without a text gets no line; the reason is added to \p failures.
    std::string lines(const Orla::StrongPtr<Orla::ValuePool>& pool, std::vector<std::string>& failures) const;

private:
    struct Output {
        std::string name; // as the user wrote it
        OutputReference output;
    };

    std::vector<Output> m_outputs;
};

} // namespace Tarn
