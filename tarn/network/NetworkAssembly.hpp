#pragma once

#include <tarn/network/Network.hpp>
#include <tarn/network/NetworkFile.hpp>
#include <tarn/network/SlotLookup.hpp>
#include <tarn/text/Faults.hpp>

#include <trellis/VObject.hpp>

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Tarn {

/// Creates the objects of a saved network, sets their inputs and connects them. Collects all
/// faults; an object with a fault does not keep others from being checked.
///
/// Derived classes finish the network or read its values, and decide about unknown types.
class NetworkAssembly {
public:
    NetworkAssembly(const NetworkFile& file, Faults& faults);
    virtual ~NetworkAssembly();
    NetworkAssembly(const NetworkAssembly&) = delete;
    NetworkAssembly& operator=(const NetworkAssembly&) = delete;

    /// Creates the objects in file order, sets their inputs, applies \p overrides
    /// (`OBJECT.SLOT=TEXT`), connects the objects and finds the columns. Faults about unknown
    /// types list \p missingLibraries.
    void assemble(const std::vector<std::string>& overrides, const std::vector<std::string>& missingLibraries);

    /// The connections and columns found by `assemble`.
    const Network& network() const noexcept { return m_network; }

protected:
    struct Object {
        Orla::StrongPtr<Orla::VObject> object; // null if it could not be created
        Orla::StrongPtr<Orla::VObjectCreator> creator;
    };

    // A text for an input, from the file or from the command line.
    struct GivenText {
        std::size_t object;
        Orla::StrongPtr<Orla::VSlot> input;
        Place place;             // empty for one from the command line
        std::string description; // the input's name in messages
        std::string text;
        bool isNumber = false; // in the file it is a number, not a string
    };

    const NetworkFile& file() const noexcept { return m_file; }
    Faults& faults() noexcept { return m_faults; }
    std::vector<Object>& objects() noexcept { return m_objects; } // in file order

private:
    // A text from the command line, and the value that the object declares for its input.
    struct Override {
        GivenText text;
        Orla::StrongPtr<Orla::VValueBase> declared;
    };

    /// Is called for each object whose type is unknown.
    virtual void onUnknownType(Place place, const std::string& message);

    /// Is called for each override of an object whose type is unknown.
    virtual void onOverrideOfUnknownType(const std::string& message);

    /// Is called before an input reads \p given.
    virtual void beforeText(const GivenText& given);

    void createObject(std::size_t number, const std::vector<std::string>& missingLibraries);
    void checkType(std::size_t number);
    void setInputs(std::size_t number);
    void setExactly(std::size_t number, const Orla::StrongPtr<Orla::VSlot>& input,
                    const NetworkFile::InputText& setting);
    void applyOverride(const Override& override);
    void prepareOverride(const std::string& override);
    bool setText(const GivenText& given);
    void checkNumber(const GivenText& given);
    void noteChoice(const GivenText& given);
    void connectInputs(std::size_t number);
    void addColumn(std::size_t number);
    Orla::StrongPtr<Orla::VSlot> findInput(std::size_t number, const PlacedText& name);
    std::optional<OutputReference> findOutput(FaultKind kind, Place place, const std::string& description,
                                              const std::string& text);
    std::string nearestObject(std::string_view text);

    const NetworkFile& m_file;
    Faults& m_faults;
    std::vector<Override> m_overrides;
    std::vector<Object> m_objects;
    Network m_network;
    ObjectNames m_names;
    std::set<const Orla::VObjectCreator*> m_checkedTypes;
    std::size_t m_guesses = 0;
};

} // namespace Tarn
