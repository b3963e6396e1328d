#pragma once

#include <trellis/Export.hpp>

#include <loam/Interface.hpp>
#include <loam/StrongPtr.hpp>

#include <functional>
#include <string>

namespace Orla {

using Loam::StrongPtr;

class VManagedObject;
class VObjectCreator;

/// Is notified of warnings, and of objects being created and removed. User interfaces and logs
/// derive from it.
///
/// Notifiers are held weakly. They are called in the order in which they were added, in the
/// thread that causes the notification. If several threads evaluate, they may call a notifier
/// at the same time.
class TRELLIS_API VActionNotifier : public Loam::ReferenceBase<VActionNotifier> {
public:
    ~VActionNotifier() override;

    /// Receives a message for the user. Returns true if the message was shown; the default
    /// does nothing and returns false.
    virtual bool warned(const std::string& message);

    /// Called when \p object is announced, with the interfaces that were passed to
    /// `VObjectCreation`; \p creator is null for an object that was created without one. The
    /// default does nothing.
    virtual void objectCreated(const StrongPtr<VManagedObject>& object, const Loam::InterfaceContainer& interfaces,
                               const StrongPtr<VObjectCreator>& creator);

    /// Called when \p object has been removed from the registry. The default does nothing.
    virtual void objectRemoved(const StrongPtr<VManagedObject>& object);

    /// Receives the message of a fault that leaves results missing: a failed update, or a loop
    /// that did not settle. Returns true if the message was shown; the default passes it to
    /// `warned`.
    virtual bool failed(const std::string& message);

    /// Adds a notifier. Returns false if the pointer is null or the notifier was added before.
    static bool add(const StrongPtr<VActionNotifier>& notifier);
    static bool remove(const StrongPtr<VActionNotifier>& notifier);

    /// Passes \p message to all notifiers. If none of them shows it, prints it to standard
    /// error.
    static void Warning(const std::string& message);

    /// As above, for a fault that leaves results missing; calls `failed`.
    static void Error(const std::string& message);

    /// Announces \p object: adds it to the registry of its network, which keeps it alive, and
    /// calls all notifiers.
    static void VObjectCreation(const StrongPtr<VManagedObject>& object, const Loam::InterfaceContainer& interfaces,
                                const StrongPtr<VObjectCreator>& creator);

    /// Notifies all notifiers that \p object was removed. Called by the registry.
    static void VObjectRemoval(const StrongPtr<VManagedObject>& object);

private:
    static void forEachLiving(const std::function<void(VActionNotifier&)>& function);
};

} // namespace Orla
