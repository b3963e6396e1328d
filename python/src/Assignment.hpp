#pragma once

#include "Conversions.hpp"
#include "Slots.hpp"

#include <optional>
#include <string>

namespace Tarn::Python {

/// What an assignment to an input means: a text in the form that saved networks use, or a value.
struct Assignment {
    /// Reads a Python object: a str, a path or a member of an enumeration is a text, everything else
    /// a value of the type of the slot.
    /// \throw py::type_error or py::value_error naming the input.
    static Assignment of(const Slot& slot, const py::object& object);

    std::optional<std::string> text{};
    StrongPtr<VValueBase> value{};
};

} // namespace Tarn::Python
