#pragma once

#include <trellis/VSlot.hpp>
#include <trellis/ValuePool.hpp>

#include <string>
#include <vector>

namespace Tarn {

class Faults;

/// Outputs of announced objects whose values are printed as lines.
class PrintedOutputs {
public:
    /// Finds what \p references name, each "OBJECT.OUTPUT" or "OBJECT.OUTPUT.MEMBER";
    /// adds a fault for each that names nothing.
    PrintedOutputs(const std::vector<std::string>& references, Faults& faults);

    bool empty() const noexcept { return m_outputs.empty(); }

    /// One line a reference, in their order, with the text form of its value in
    /// \p pool: `OBJECT.OUTPUT: TEXT`. Control characters are escaped, so that a
    /// line stays one. A value that has no text has no line, and \p failures says why.
    std::string lines(const Orla::StrongPtr<Orla::ValuePool>& pool, std::vector<std::string>& failures) const;

private:
    struct Output {
        std::string reference;
        Orla::StrongPtr<Orla::VSlot> slot;
        std::string member;
    };

    std::vector<Output> m_outputs;
};

} // namespace Tarn
