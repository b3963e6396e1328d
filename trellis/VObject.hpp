#pragma once

#include <trellis/Export.hpp>
#include <trellis/VCreationPreferences.hpp>
#include <trellis/VManagedObject.hpp>
#include <trellis/VRequest.hpp>
#include <trellis/VSkale.hpp>

#include <string>
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
/// An object is made in four steps: its constructor declares slots and outputs,
/// the set-up functions of its mix-ins look for partners, request processing is
/// enabled, and the object is announced. `finishCreation` takes the last three.
class TRELLIS_API VObject : public VManagedObject, public virtual VSkale {
public:
    VObject(const std::string& name, int level, const StrongPtr<VCreationPreferences, InterfaceBase>& preferences);
    ~VObject() override;

    /// Brings the outputs in the request's pool up to date with the inputs there.
    /// \p precision is the number that the object was scheduled with, 0 where
    /// nobody gave one. Returns false if the outputs could not be computed; what
    /// it throws is reported and counts as the same.
    virtual bool update(VRequest& request, double precision) = 0;

    /// From here on the object is evaluated when it is due.
    void enableRequestProcessing() noexcept { m_isEvaluated = true; }
    bool isRequestProcessingEnabled() const noexcept { return m_isEvaluated; }

    /// What the object was made for; may be null.
    const StrongPtr<VCreationPreferences, InterfaceBase>& creationPreferences() const noexcept
    {
        return m_preferences;
    }

    /// Runs the set-up functions, enables request processing and announces the
    /// object.
    static void finishCreation(const StrongPtr<VObject>& object,
                               const Loam::InterfaceContainer& interfaces = {},
                               const StrongPtr<VObjectCreator>& creator = {});

    /// A finished object of a registered type; null if there is no such type.
    static StrongPtr<VObject> createObject(const std::string& typeName, const std::string& name,
                                           const StrongPtr<VCreationPreferences>& preferences = {});

    /// Shows each output of type \p type of each announced object to
    /// \p iterator. False if a visit ended it.
    static bool findOutputObjects(const std::type_info& type, VOutputIterator& iterator);

    /// Makes an object of the registered type \p typeName, bearing that name, and
    /// connects its output of the slot's type to \p slot of \p object. Null, a
    /// warning, and the slot as it was, if there is no such type or output.
    static StrongPtr<VObject> attachNewObject(VObject* object, const StrongPtr<VSlot>& slot,
                                              const std::string& typeName,
                                              const StrongPtr<VCreationPreferences>& preferences);

private:
    StrongPtr<VCreationPreferences> m_preferences;
};

} // namespace Orla
