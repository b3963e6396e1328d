#pragma once

#include "Networks.hpp"

#include <trellis/VSlotDescription.hpp>

#include <string>
#include <typeinfo>
#include <vector>

namespace Tarn::Python {

enum class SlotKind {
    Any, ///< an input, else an output
    Input,
    Output
};

/// An input or output of an object at one moment, or a component of an output.
struct Slot {
    /// Finds the slot \p name, or "OUTPUT.MEMBER".
    /// \throw Removed, or Missing with the names of the existing slots.
    static Slot find(const Handle& handle, const std::string& name, SlotKind kind);

    /// Returns "OBJECT.SLOT".
    std::string reference() const { return object + '.' + name; }

    /// Returns the beginning of messages.
    std::string place() const;

    std::string object;      ///< its name
    std::string description; ///< of the object, in messages
    std::string name;
    const std::type_info* type = nullptr;
    std::string typeName;                            ///< for people
    std::string typeCode;                            ///< for programs
    std::vector<std::string> components;             ///< of the values
    std::string source{};                            ///< "OBJECT.OUTPUT" that a connected input reads
    int level = 0;                                   ///< the expert level
    const Orla::VSlotDescription* meaning = nullptr; ///< null if not described
    bool isOutput = false;
    bool isConnected = false;
    bool isAutomatic = false; ///< connected automatically unless the user connects it
    bool namesResult = false; ///< has the name of a file that the object writes
};

/// Returns the smallest and the largest number that the slot accepts, or None without limits.
py::object limitsOf(const Orla::VSlotDescription* description);

/// Returns the inputs or the outputs.
/// \throw Removed if the object was removed.
std::vector<Slot> slotsOf(const Handle& handle, SlotKind kind);

/// Returns the registered name of the object's type.
std::string typeOf(const Handle& handle);

void bindSlots(py::module_& module);

} // namespace Tarn::Python
