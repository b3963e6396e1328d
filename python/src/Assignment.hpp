#pragma once

#include "Conversions.hpp"
#include "Slots.hpp"

#include <optional>
#include <string>

namespace Tarn {
class Context;
}

namespace Tarn::Python {

/// Python raises `ValueError`.
struct RefusedAssignment : py::value_error {
    using py::value_error::value_error;
};

/// What an assignment to an input means: a text in the form that saved networks use, or a value.
struct Assignment {
    /// Reads a Python object: a str, a path or a member of an enumeration is a text, everything else
    /// a value of the type of the slot.
    /// \throw py::type_error or py::value_error naming the input.
    static Assignment of(const Slot& slot, const py::object& object);

    /// Sets the input \p slot of a context. Needs no interpreter lock. The context shares nothing with
    /// the assignment, such as a selection.
    /// \throw RefusedAssignment naming the input.
    void applyTo(Context& context, const Slot& slot) const;

    std::optional<std::string> text{};
    StrongPtr<VValueBase> value{};
};

} // namespace Tarn::Python
