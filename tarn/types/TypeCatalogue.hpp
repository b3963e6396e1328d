#pragma once

#include <tarn/libraries/ObjectTracker.hpp>
#include <tarn/libraries/Libraries.hpp>

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace Tarn {

/// A registered value type as users meet it.
struct ValueTypeDescription {
    std::string name;
    std::string colour;                  ///< of connections; empty if the type has none
    std::string defaultText;             ///< of a value that nobody has set
    std::string failure;                 ///< why no value can be made; empty if one can
    bool isInput = false;                ///< whether inputs of the type can be made by its name
    std::vector<std::string> components; ///< what stands behind OBJECT.OUTPUT in a reference
};

/// A registered object type, read off an object of it.
struct ObjectTypeDescription {
    struct Input {
        std::string name;
        std::string type;
        int level = 0; ///< the expert level
        std::string initialText;
        bool findsPartner = false; ///< connected by itself where the user does not
        std::string partner;       ///< "OBJECT.OUTPUT" if it is known before there is a network
    };

    struct Output {
        std::string name;
        std::string type;
    };

    std::string name;
    std::string library; ///< its file
    std::string failure; ///< why no object can be made; empty if one can
    std::vector<Input> inputs;
    std::vector<Output> outputs;
    std::size_t hiddenInputs = 0; ///< those above the expert level that was asked for
};

/// The types that there are with some libraries in memory. What it makes to look at
/// them is gone after each answer, and the libraries with it; if something of theirs
/// is still in use then, they stay in memory and a warning says so.
class TypeCatalogue {
public:
    static constexpr int AllLevels = std::numeric_limits<int>::max();

    /// Loads the standard library and \p libraries, which are looked for from the
    /// working folder.
    explicit TypeCatalogue(const std::vector<std::string>& libraries);
    ~TypeCatalogue();
    TypeCatalogue(const TypeCatalogue&) = delete;
    TypeCatalogue& operator=(const TypeCatalogue&) = delete;

    /// Why libraries could not be loaded, a text each.
    const std::vector<std::string>& refusals() const noexcept { return m_refusals; }

    /// All registered types, in alphabetic order.
    std::vector<ValueTypeDescription> valueTypes() const;
    std::vector<ObjectTypeDescription> objectTypes(int highestLevel = AllLevels) const;

    /// All object types with their names and files alone; nothing is made.
    std::vector<ObjectTypeDescription> objectTypeFiles() const;

    /// The registered type \p name; one or none.
    std::vector<ValueTypeDescription> valueTypes(const std::string& name) const;

    /// The same, as an object that is made for it shows it: its constructor runs,
    /// and it is let go unannounced with all that the constructor announced. Inputs
    /// above \p highestLevel are counted only.
    std::vector<ObjectTypeDescription> objectTypes(const std::string& name, int highestLevel = AllLevels) const;

private:
    Orla::StrongPtr<ObjectTracker> m_tracker;
    Libraries m_libraries;
    std::vector<std::string> m_refusals;
};

} // namespace Tarn
