#pragma once

#include "References.hpp"

#include <trellis/VObject.hpp>
#include <trellis/VSlotDescription.hpp>

#include <memory>
#include <string>
#include <vector>

// Processing objects whose updates are written in Python.

namespace Tarn::Python {

/// A slot that a Python class declares.
struct SlotDeclaration {
    std::string name;
    std::string type; ///< registered name or label
    Reference initial;
    Orla::StrongPtr<Orla::VSlotDescription> description;
    int level = 0;
    bool isOutput = false;
    bool triggers = true;
};

/// What a Python class declares.
struct ClassDeclaration {
    std::string name;
    std::string file;
    Reference cls;
    std::vector<SlotDeclaration> slots;
    bool isTimed = false;    ///< has inputs for the current time
    bool keepsState = false; ///< results depend on earlier updates
};

/// Connects an instance of the Python class with its object. Python calls it with the interpreter
/// lock; each function requires a running update unless it says otherwise.
class ObjectCore {
public:
    py::object read(const std::string& name, bool isOutput);
    void write(const std::string& name, const py::object& content);
    std::string inputFile(const std::string& name);
    std::string resultFile(const std::string& name);
    void progress(double fraction);
    bool isCancelled();
    bool hasChanged(const std::string& name);

    Orla::VObject* object = nullptr;
    Orla::VRequest* request = nullptr; ///< of the running update
    double number = 0;                 ///< of the action that triggered the update
    unsigned long thread = 0;          ///< Python's number of the thread that runs the update
    bool isInterrupted = false;

private:
    void requireUpdate() const;
    Orla::StrongPtr<Orla::VSlot> findSlot(const std::string& name, bool isOutput) const;
};

using ObjectCorePtr = std::shared_ptr<ObjectCore>;

} // namespace Tarn::Python
