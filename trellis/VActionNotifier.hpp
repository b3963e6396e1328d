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

/// Is notified of what happens in the process: user interfaces and logs derive from it.
///
/// Notifiers are held weakly and called in the order in which they were added, in the
/// thread in which something happens: where several threads evaluate, a notifier may be
/// called by several threads at once.
class TRELLIS_API VActionNotifier : public Loam::ReferenceBase<VActionNotifier> {
public:
    ~VActionNotifier() override;

    /// A message for the user. Returns true if the message was shown; the default does
    /// nothing and returns false.
    virtual bool warned(const std::string& message);

    /// \p object was announced, with the interfaces that its maker passed along; \p creator
    /// is null for an object that was made without one. The default does nothing.
    virtual void objectCreated(const StrongPtr<VManagedObject>& object, const Loam::InterfaceContainer& interfaces,
                               const StrongPtr<VObjectCreator>& creator);

    /// \p object was removed from the registry. The default does nothing.
    virtual void objectRemoved(const StrongPtr<VManagedObject>& object);

    /// Returns false for a null pointer and for a notifier that was added before.
    static bool add(const StrongPtr<VActionNotifier>& notifier);
    static bool remove(const StrongPtr<VActionNotifier>& notifier);

    /// Passes \p message to all notifiers; if none of them shows it, prints it to standard
    /// error, so that it is not lost.
    static void Warning(const std::string& message);

    /// Announces \p object: the registry of its network keeps it alive from now on, and
    /// all notifiers are notified.
    static void VObjectCreation(const StrongPtr<VManagedObject>& object, const Loam::InterfaceContainer& interfaces,
                                const StrongPtr<VObjectCreator>& creator);

    /// Notifies all notifiers; called by the registry.
    static void VObjectRemoval(const StrongPtr<VManagedObject>& object);

private:
    static void forEachLiving(const std::function<void(VActionNotifier&)>& function);
};

} // namespace Orla
