#pragma once

#include <trellis/Export.hpp>

#include <loam/Interface.hpp>
#include <loam/StrongPtr.hpp>

#include <string>

namespace Orla {

using Loam::StrongPtr;

class VManagedObject;
class VObjectCreator;

/// Hears what happens in the process: user interfaces and logs derive from it.
///
/// Notifiers are held weakly and called in the order in which they were added.
class TRELLIS_API VActionNotifier : public Loam::ReferenceBase<VActionNotifier> {
public:
    ~VActionNotifier() override;

    /// A message for the user. Returns whether somebody gets to see it; the
    /// default does nothing and returns false.
    virtual bool warned(const std::string& message);

    /// \p object was announced, with what else its maker gave along; \p creator
    /// is null for an object that no creator made. The default does nothing.
    virtual void objectCreated(const StrongPtr<VManagedObject>& object, const Loam::InterfaceContainer& interfaces,
                               const StrongPtr<VObjectCreator>& creator);

    /// \p object was taken out of the registry. The default does nothing.
    virtual void objectRemoved(const StrongPtr<VManagedObject>& object);

    /// False for a null pointer and for one that is in already.
    static bool add(const StrongPtr<VActionNotifier>& notifier);
    static bool remove(const StrongPtr<VActionNotifier>& notifier);

    /// Hands \p message to all notifiers; if none of them shows it, it goes to
    /// standard error, so that it is not lost.
    static void Warning(const std::string& message);

    /// Announces \p object: the registry of managed objects keeps it alive from
    /// now on, and all notifiers learn of it.
    static void VObjectCreation(const StrongPtr<VManagedObject>& object, const Loam::InterfaceContainer& interfaces,
                                const StrongPtr<VObjectCreator>& creator);

    /// Tells all notifiers; called by the registry.
    static void VObjectRemoval(const StrongPtr<VManagedObject>& object);
};

} // namespace Orla
