#pragma once

#include <string>
#include <vector>

namespace Tarn {

class Context;
class Faults;
class Session;

/// Outputs and inputs of a session's objects, whose values are printed one per line.
class PrintedOutputs {
public:
    /// Finds what \p references name. Each is "OBJECT.OUTPUT", "OBJECT.OUTPUT.MEMBER",
    /// "OBJECT.INPUT", or a pattern of outputs in which "*" matches any text: "filter.*". An output
    /// is preferred to an input of the same name. Adds a fault for each reference that names
    /// nothing.
    PrintedOutputs(const Session& session, const std::vector<std::string>& references, Faults& faults);

    bool empty() const noexcept { return m_slots.empty(); }

    /// Returns one line per slot, in order, with the text form of its value in \p context:
    /// `OBJECT.OUTPUT: TEXT`. Control characters, including line breaks, are escaped. A value
    /// without a text gets no line; the reason is added to \p failures.
    std::string lines(const Context& context, std::vector<std::string>& failures) const;

private:
    struct Slot {
        std::string name; // as the user wrote it, unless it is a pattern
        bool isInput;
    };

    void addMatches(const Session& session, const std::string& pattern, Faults& faults);

    std::vector<Slot> m_slots;
};

} // namespace Tarn
