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
/// An object is created in four steps: its constructor declares slots and outputs,
/// the set-up functions of its mix-ins look for partners, request processing is
/// enabled, and the object is announced. `finishCreation` takes the last three.
///
/// Pools of one network may be evaluated in several threads at the same time, so `update`
/// may run several times at once, each time with another pool. An object that keeps
/// state in members declares it with `keepsState()` in its constructor.
class TRELLIS_API VObject : public VManagedObject, public virtual VSkale {
public:
    VObject(const std::string& name, int level, const StrongPtr<VCreationPreferences, InterfaceBase>& preferences);
    ~VObject() override;

    /// Brings the outputs in the request's pool up to date with the inputs there.
    /// \p precision is the number that the object was scheduled with, 0 unless
    /// `VScheduler::schedule` was called. Returns false if the outputs could not be
    /// computed; what it throws is reported and counts as the same. After such a failure
    /// the objects that read its outputs do not run until it succeeds.
    virtual bool update(VRequest& request, double precision) = 0;

    /// From here on the object is evaluated when it is due.
    void enableRequestProcessing();
    bool isRequestProcessingEnabled() const noexcept { return wiring().isEvaluated; }

    /// What the object was made for; may be null.
    const StrongPtr<VCreationPreferences, InterfaceBase>& creationPreferences() const noexcept { return m_preferences; }

    /// Runs the set-up functions, enables request processing and announces the
    /// object.
    static void finishCreation(const StrongPtr<VObject>& object, const Loam::InterfaceContainer& interfaces = {},
                               const StrongPtr<VObjectCreator>& creator = {});

    /// A finished object of a registered type in the current network; null if no
    /// library has such a type.
    static StrongPtr<VObject> createObject(const std::string& typeName, const std::string& name,
                                           const StrongPtr<VCreationPreferences>& preferences = {});

    /// Shows each output of type \p type of each announced object to
    /// \p iterator. A visitor that skips objects whose preferences lack a certain word
    /// passes it as \p requiredPreference; only objects with that word are then looked
    /// at, which takes the same time however many others there are. Returns false if a
    /// visit ended it.
    static bool findOutputObjects(const std::type_info& type, VOutputIterator& iterator,
                                  const std::string& requiredPreference = {});

    /// As above: calls \p function with each object and output, until it returns false if
    /// it returns `bool`.
    template<class Function>
    static bool forEachOutput(const std::type_info& type, Function&& function,
                              const std::string& requiredPreference = {});

    /// Creates an object of the registered type \p typeName, bearing that name, and
    /// connects its output of the slot's type to \p slot of \p object. Returns
    /// null with a warning, and leaves the slot as it was, if the type or the output does
    /// not exist. Returns null, too, while this function creates an object of that type for
    /// another slot: a provider that needs a provider of its own kind keeps its own value.
    static StrongPtr<VObject> attachNewObject(VObject* object, const StrongPtr<VSlot>& slot,
                                              const std::string& typeName,
                                              const StrongPtr<VCreationPreferences>& preferences);

    /// True while `attachNewObject` creates an object of that type in the network of
    /// \p object.
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
