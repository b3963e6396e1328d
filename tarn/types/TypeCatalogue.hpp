#pragma once

#include <tarn/Export.hpp>

#include <trellis/VSlotDescription.hpp>
#include <trellis/VTypeDescription.hpp>

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

class Libraries;

/// A registered value type as shown to users.
struct TARN_API ValueTypeDescription {
    std::string name;                    ///< the registered name
    std::string label;                   ///< the name for people
    std::string example;                 ///< a text that the type accepts; may be empty
    std::string colour;                  ///< of connections; empty if the type has none
    std::string defaultText;             ///< of an unset value
    std::string failure;                 ///< why no value can be created; empty if one can
    bool isInput = false;                ///< whether inputs of the type can be created by name
    std::vector<std::string> components; ///< names that may follow OBJECT.OUTPUT in a reference
};

/// A registered object type, as read from an instance.
struct TARN_API ObjectTypeDescription {
    struct TARN_API Input {
        std::string name;
        std::string type;      ///< the name for programs
        std::string typeLabel; ///< the name for people
        int level = 0;         ///< the expert level
        std::string initialText;
        std::string exampleText;                             ///< a text that a network can set; may be empty
        bool findsPartner = false;                           ///< connected automatically unless the user connects it
        std::string partner;                                 ///< "OBJECT.OUTPUT" if known without a network
        std::vector<std::string> choices;                    ///< the names of an enumeration or a selection
        const Orla::VSlotDescription* description = nullptr; ///< null if not described
    };

    struct TARN_API Output {
        std::string name;
        std::string type;
        std::string typeLabel;
        const Orla::VSlotDescription* description = nullptr;
    };

    std::string name;
    std::string library; ///< path of its file
    std::optional<Orla::VTypeDescription::Parts> description;
    std::string failure; ///< why no object can be created; empty if one can
    std::vector<Input> inputs;
    std::vector<Output> outputs;  ///< without private state
    std::size_t hiddenInputs = 0; ///< inputs above the requested expert level
};

/// The types registered while some libraries are loaded. Objects created for inspection are
/// destroyed before each call returns. The destructor unloads the libraries; if something
/// from them is still in use, they stay in memory and a warning is issued.
class TARN_API TypeCatalogue {
public:
    static constexpr int AllLevels = std::numeric_limits<int>::max();

    /// Loads the standard library and \p libraries, searching from the working folder.
    explicit TypeCatalogue(const std::vector<std::string>& libraries);
    ~TypeCatalogue();
    TypeCatalogue(const TypeCatalogue&) = delete;
    TypeCatalogue& operator=(const TypeCatalogue&) = delete;

    /// Returns why libraries could not be loaded, one text per library.
    const std::vector<std::string>& refusals() const noexcept { return m_refusals; }

    /// Returns all registered types, in alphabetical order.
    std::vector<ValueTypeDescription> valueTypes() const;
    std::vector<ObjectTypeDescription> objectTypes(int highestLevel = AllLevels) const;

    /// Returns all object types, with names and files only. Creates no objects.
    std::vector<ObjectTypeDescription> objectTypeFiles() const;

    /// Returns the types that are registered as, or labelled, \p name.
    std::vector<ValueTypeDescription> valueTypes(const std::string& name) const;

    /// Returns the registered object type \p name, or an empty list. If several libraries have
    /// different types of that name, returns each, named LIBRARY:NAME. Creates an object, so its
    /// constructor runs, and destroys it unannounced, along with everything the constructor
    /// announced. Inputs above \p highestLevel are only counted.
    std::vector<ObjectTypeDescription> objectTypes(const std::string& name, int highestLevel = AllLevels) const;

private:
    std::unique_ptr<Libraries> m_libraries;
    std::vector<std::string> m_refusals;
};

} // namespace Tarn
