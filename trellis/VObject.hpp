#pragma once

#include <trellis/Export.hpp>
#include <trellis/VCreationPreferences.hpp>
#include <trellis/VManagedObject.hpp>
#include <trellis/VRequest.hpp>
#include <trellis/VSkale.hpp>

#include <string>
#include <type_traits>
#include <typeinfo>

namespace Orla {

class VObject;
class VObjectCreator;

/// Visits outputs of objects; see `VObject::findOutputObjects`.
class TRELLIS_API VOutputIterator {
public:
    virtual ~VOutputIterator();

    /// Returns false to end the search.
    virtual bool apply(const StrongPtr<VObject>& object, const std::type_info& type,
                       const StrongPtr<VSlot>& output) = 0;
};

/// A processing object: reads its inputs and writes its outputs when it is due.
///
/// Creation takes four steps: the constructor declares slots and outputs, the set-up functions
/// of the mix-ins look for providers, request processing is enabled, and the object is
/// announced. `finishCreation` performs the last three.
///
/// Several threads may evaluate pools of one network at the same time, so calls of `update`
/// may overlap, each for a different pool. An object that keeps state in members calls
/// `keepsState()` in its constructor.
///
/// `docs/architecture.md` shows the path of a value through the classes.
class TRELLIS_API VObject : public VManagedObject, public virtual VSkale {
public:
    /// Creates an object of the current network. Traversals visit objects with a lower
    /// \p level first; it does not affect the order of updates. \p preferences may be null.
    VObject(const std::string& name, int level, const StrongPtr<VCreationPreferences, InterfaceBase>& preferences);
    ~VObject() override;

    /// Updates the outputs in the request's pool from the inputs in that pool. \p precision is
    /// the number that was passed to `VScheduler::schedule`, else 0. Returns false if the
    /// outputs could not be computed. An exception is reported and counts as a failure, too.
    /// After a failure, the objects that read the outputs do not run until an update succeeds.
    virtual bool update(VRequest& request, double precision) = 0;

    /// Enables evaluation: the object runs whenever it is due.
    void enableRequestProcessing();
    bool isRequestProcessingEnabled() const noexcept { return wiring().isEvaluated; }

    /// Returns the preferences that the object was created with; may be null.
    const StrongPtr<VCreationPreferences, InterfaceBase>& creationPreferences() const noexcept { return m_preferences; }

    /// Returns the path of the file \p name that the object reads; see `VNetwork::findFile`. A
    /// relative name does not start at the working directory, so an object must not open \p name
    /// itself.
    std::string inputFile(const std::string& name) const;

    /// Returns the path of the file \p name that the object writes in an evaluation of \p pool:
    /// a relative name starts at the network's folder. If the pool has a result tag, "-" and the
    /// tag are inserted before the extension: "map.png" becomes "map-case7.png".
    std::string resultFile(const std::string& name, const StrongPtr<ValuePool>& pool) const;

    /// Runs the set-up functions, enables request processing and announces the object.
    static void finishCreation(const StrongPtr<VObject>& object, const Loam::InterfaceContainer& interfaces = {},
                               const StrongPtr<VObjectCreator>& creator = {});

    /// Creates and finishes an object of a registered type in the current network. Returns
    /// null if no loaded library registers the type. Warns if several libraries have different
    /// types of that name; see VObjectCreator::find.
    static StrongPtr<VObject> createObject(const std::string& typeName, const std::string& name,
                                           const StrongPtr<VCreationPreferences>& preferences = {});

    /// Passes each output of type \p type of each announced object to \p iterator. If
    /// \p requiredPreference is not empty, visits only objects whose preferences contain that
    /// word; the time does not depend on the number of other objects. Returns false if a visit
    /// ended the search.
    static bool findOutputObjects(const std::type_info& type, VOutputIterator& iterator,
                                  const std::string& requiredPreference = {});

    /// As above, but calls \p function with each object and output. If it returns `bool`,
    /// false ends the search.
    template<class Function>
    static bool forEachOutput(const std::type_info& type, Function&& function,
                              const std::string& requiredPreference = {});

    /// Creates an object of the registered type \p typeName under that name, and connects
    /// \p slot of \p object to its output of the slot's type. If the type or the output does
    /// not exist, warns, leaves the slot unchanged and returns null. Also returns null while
    /// an object of that type is being created for another slot: a provider that needs a
    /// provider of its own kind keeps its own value.
    static StrongPtr<VObject> attachNewObject(VObject* object, const StrongPtr<VSlot>& slot,
                                              const std::string& typeName,
                                              const StrongPtr<VCreationPreferences>& preferences);

    /// Returns true while an object of that type is being created as a provider in the network
    /// of \p object.
    static bool isBeingProvided(const VObject& object, const std::string& typeName);

private:
    StrongPtr<VCreationPreferences> m_preferences;
};

template<class Function>
bool VObject::forEachOutput(const std::type_info& type, Function&& function, const std::string& requiredPreference)
{
    using Result = std::invoke_result_t<Function&, const StrongPtr<VObject>&, const StrongPtr<VSlot>&>;
    struct Visit final : VOutputIterator {
        explicit Visit(Function& theFunction) : function{theFunction} {}

        bool apply(const StrongPtr<VObject>& object, const std::type_info&, const StrongPtr<VSlot>& output) override
        {
            if constexpr (std::is_same_v<Result, bool>) {
                return function(object, output);
            } else {
                function(object, output);
                return true;
            }
        }

        Function& function;
    } visit{function};
    return findOutputObjects(type, visit, requiredPreference);
}

} // namespace Orla
