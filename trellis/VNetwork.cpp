#include <trellis/VNetwork.hpp>

#include <trellis/detail/FrameHooks.hpp>
#include <trellis/detail/NetworkObjects.hpp>
#include <trellis/detail/PoolState.hpp>
#include <trellis/detail/Wiring.hpp>

#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace Orla {

using Detail::NetworkCore;
using Detail::NetworkObjects;

VNetwork::VNetwork(std::string folder) : m_core{Loam::makeStrong<NetworkCore>()}, m_folder{std::move(folder)}
{
    m_core->network = this;
}

VNetwork::VNetwork(NetworkCore& core) : m_core{&core}
{
    core.network = this;
}

VNetwork::~VNetwork()
{
    if (m_core.get() == &NetworkCore::defaultCore()) {
        m_core->network = nullptr;
        return; // the objects of the default network live until the program ends
    }
    const Detail::ChangeScope change{*m_core};
    removeAll();
    m_core->network = nullptr;
}

void VNetwork::removeAll()
{
    NetworkCore& core = *m_core;
    {
        // In reverse order: objects are destroyed before those that they read.
        std::vector<NetworkObjects::Entry> objects;
        if (NetworkObjects* const all = NetworkObjects::find(core)) {
            objects = all->objects(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
            while (!objects.empty()) {
                VManagedObject::remove(objects.back().object);
                objects.pop_back();
            }
        }
    }
    // Detach the objects that have other owners.
    core.close();
    if (NetworkObjects* const all = NetworkObjects::find(core))
        all->close();
    const std::vector<StrongPtr<VSlotContainer>> containers = core.containers();
    for (const StrongPtr<VSlotContainer>& container : containers)
        Detail::FrameHooks::containerGone(*container);
    for (const StrongPtr<VSlotContainer>& container : containers)
        Detail::Wiring::cut(*container);
}

VNetwork& VNetwork::defaultNetwork()
{
    static VNetwork theNetwork{NetworkCore::defaultCore()};
    return theNetwork;
}

VNetwork& VNetwork::current()
{
    VNetwork* const network = NetworkCore::current().network.load();
    return network ? *network : defaultNetwork();
}

VNetwork::Scope::Scope(VNetwork& network) noexcept
    : m_network{network.m_core}, m_previous{NetworkCore::exchangeCurrent(network.m_core.get())}
{
}

VNetwork::Scope::~Scope()
{
    NetworkCore::exchangeCurrent(m_previous);
}

VNetwork::Change::Change(VNetwork& network) : m_network{network.m_core}
{
    m_network->gate.beginChange();
}

VNetwork::Change::~Change()
{
    m_network->gate.endChange();
}

VNetwork::Use::Use(VNetwork& network) : m_network{network.m_core}
{
    m_network->gate.enter();
}

VNetwork::Use::~Use()
{
    m_network->gate.leave();
}

std::string VNetwork::resolve(const std::string& fileName) const
{
    const std::filesystem::path path = fileName;
    if (m_folder.empty() || path.is_absolute())
        return fileName;
    return (std::filesystem::path(m_folder) / path).string();
}

std::string VNetwork::findFile(const std::string& fileName) const
{
    namespace fs = std::filesystem;
    std::string here = resolve(fileName);
    std::error_code error;
    if (fs::path(fileName).is_absolute() || fileName.empty() || fs::exists(here, error))
        return here;
    for (const std::string& folder : m_dataFolders) {
        if (const fs::path there = fs::path(folder) / fileName; fs::exists(there, error))
            return there.string();
    }
    return here;
}

std::size_t VNetwork::objectCount() const
{
    NetworkObjects* const objects = NetworkObjects::find(*m_core);
    return objects ? objects->count() : 0;
}

StrongPtr<VManagedObject> VNetwork::find(const std::string& name) const
{
    NetworkObjects* const objects = NetworkObjects::find(*m_core);
    return objects ? objects->find(name) : nullptr;
}

StrongPtr<VManagedObject> VNetwork::uniqueObject(const std::type_info& kind) const
{
    NetworkObjects* const objects = NetworkObjects::find(*m_core);
    return objects ? objects->uniqueObject(kind) : nullptr;
}

void VNetwork::setUniqueObject(const std::type_info& kind, const StrongPtr<VManagedObject>& object)
{
    NetworkObjects::of(*m_core).setUniqueObject(kind, object);
}

} // namespace Orla
