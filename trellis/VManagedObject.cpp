#include <trellis/VManagedObject.hpp>

#include <trellis/detail/FrameHooks.hpp>
#include <trellis/detail/NetworkObjects.hpp>
#include <trellis/detail/PoolState.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VNetwork.hpp>
#include <trellis/VSlotContainer.hpp>

#include <utility>

namespace Orla {

using Detail::NetworkCore;
using Detail::NetworkObjects;

namespace {

// Records whether the registry keeps the object alive while it is evaluated.
void setAnnounced(VManagedObject& object, bool isAnnounced)
{
    auto* const container = dynamic_cast<VSlotContainer*>(&object);
    if (!container)
        return;
    container->wiring().isAnnounced = isAnnounced;
    Detail::FrameHooks::switchesChanged(*container);
}

} // namespace

VManagedObjectIterator::~VManagedObjectIterator() = default;

VManagedObject::VManagedObject(const std::string& name, int level)
    : m_name{name}, m_network{&NetworkCore::current()}, m_level{level}
{
    m_network->referenceBlock().addStrong();
}

VManagedObject::~VManagedObject()
{
    m_network->referenceBlock().releaseStrong();
}

VNetwork* VManagedObject::network() const noexcept
{
    if (m_network == &NetworkCore::defaultCore())
        return &VNetwork::defaultNetwork();
    return m_network->network.load();
}

bool VManagedObject::add(const StrongPtr<VManagedObject>& object)
{
    if (!object)
        return false;
    NetworkCore& network = *object->m_network;
    NetworkObjects& objects = NetworkObjects::of(network);
    {
        const Detail::ChangeScope change{network};
        if (!objects.add(object))
            return false;
        setAnnounced(*object, true);
    }
    for (const StrongPtr<Detail::RegistryWatcher>& watcher : objects.watchers())
        watcher->objectAdded(object);
    return true;
}

bool VManagedObject::remove(const StrongPtr<VManagedObject>& object)
{
    if (!object)
        return false;
    // The argument may be the registry's own pointer.
    const StrongPtr<VManagedObject> keepAlive = object;
    NetworkCore& network = *keepAlive->m_network;
    NetworkObjects* const objects = NetworkObjects::find(network);
    if (!objects)
        return false;
    {
        const Detail::ChangeScope change{network};
        if (!keepAlive->isRegistered())
            return false;
        Detail::PoolState::holdWhileUpdating(keepAlive);
        objects->remove(*keepAlive);
        setAnnounced(*keepAlive, false);
    }
    for (const StrongPtr<Detail::RegistryWatcher>& watcher : objects->watchers())
        watcher->objectRemoved(keepAlive);
    VActionNotifier::VObjectRemoval(keepAlive);
    return true;
}

bool VManagedObject::rename(const StrongPtr<VManagedObject>& object, std::string name)
{
    if (!object)
        return false;
    NetworkCore& network = *object->m_network;
    const Detail::ChangeScope change{network};
    NetworkObjects::of(network).rename(*object, name);
    return true;
}

bool VManagedObject::traverse(VManagedObjectIterator& iterator, int from, int to)
{
    NetworkObjects* const objects = NetworkObjects::find(NetworkCore::current());
    if (!objects)
        return true;
    for (const NetworkObjects::Entry& entry : objects->objects(from, to)) {
        if (objects->isCurrent(entry) && !iterator.apply(entry.object))
            return false;
    }
    return true;
}

StrongPtr<VManagedObject> VManagedObject::find(const std::string& name)
{
    NetworkObjects* const objects = NetworkObjects::find(NetworkCore::current());
    return objects ? objects->find(name) : nullptr;
}

std::size_t VManagedObject::count()
{
    NetworkObjects* const objects = NetworkObjects::find(NetworkCore::current());
    return objects ? objects->count() : 0;
}

// Defined here, because announcing an object adds it to the registry.

} // namespace Orla
