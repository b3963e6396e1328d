#include <trellis/detail/NetworkCore.hpp>

#include <trellis/VSlotContainer.hpp>

#include <algorithm>
#include <iterator>

namespace Orla::Detail {

namespace {

#if defined(__GNUC__) && !defined(_WIN32)
__attribute__((tls_model("initial-exec")))
#endif
thread_local NetworkCore* t_current = nullptr;

struct CoreList {
    std::mutex mutex;
    std::vector<NetworkCore*> cores;
};

CoreList& coreList()
{
    // Never destroyed, because objects may outlive all static objects.
    static CoreList& theList = *new CoreList;
    return theList;
}

} // namespace

NetworkCore::Extension::~Extension() = default;

NetworkCore::NetworkCore()
{
    const std::lock_guard lock{coreList().mutex};
    coreList().cores.push_back(this);
}

NetworkCore::~NetworkCore()
{
    const std::lock_guard lock{coreList().mutex};
    std::erase(coreList().cores, this);
}

std::vector<Loam::StrongPtr<NetworkCore>> NetworkCore::all()
{
    const std::lock_guard lock{coreList().mutex};
    std::vector<Loam::StrongPtr<NetworkCore>> living;
    for (NetworkCore* core : coreList().cores) {
        if (auto alive = Loam::WeakPtrImpl<NetworkCore>(core).lock())
            living.push_back(std::move(alive));
    }
    return living;
}

NetworkCore& NetworkCore::defaultCore()
{
    // Never destroyed, because objects may outlive all static objects.
    static NetworkCore& theCore = [&]() -> NetworkCore& {
        auto* const core = new NetworkCore;
        core->referenceBlock().adopt();
        return *core;
    }();
    return theCore;
}

NetworkCore& NetworkCore::current() noexcept
{
    return t_current && !t_current->isClosed() ? *t_current : defaultCore();
}

NetworkCore* NetworkCore::exchangeCurrent(NetworkCore* core) noexcept
{
    return std::exchange(t_current, core);
}

std::uint32_t NetworkCore::add(VSlotContainer& container)
{
    const std::lock_guard lock{m_mutex};
    if (!m_free.empty()) {
        const std::uint32_t index = m_free.back();
        m_free.pop_back();
        m_containers[index] = &container;
        return index;
    }
    // Reserve room for every index that may become free, so `remove` cannot fail.
    if (m_free.capacity() <= m_containers.size())
        m_free.reserve(2 * m_containers.size() + 16);
    m_containers.push_back(&container);
    return static_cast<std::uint32_t>(m_containers.size() - 1);
}

void NetworkCore::remove(VSlotContainer& container) noexcept
{
    const std::lock_guard lock{m_mutex};
    const std::uint32_t index = container.wiring().index;
    m_containers[index] = nullptr;
    m_free.push_back(index);
    if (m_free.size() == m_containers.size()) {
        // The network is empty again; free the memory.
        m_containers = {};
        m_free = {};
    }
}

std::vector<Loam::StrongPtr<VSlotContainer>> NetworkCore::containers() const
{
    const std::lock_guard lock{m_mutex};
    std::vector<Loam::StrongPtr<VSlotContainer>> living;
    living.reserve(m_containers.size());
    for (VSlotContainer* container : m_containers) {
        if (!container)
            continue;
        if (auto alive = Loam::WeakPtrImpl<VSlotContainer>(container).lock())
            living.push_back(std::move(alive));
    }
    return living;
}

void NetworkCore::updateOrder()
{
    std::vector<VSlotContainer*> all;
    if (order.needsAll()) {
        const std::lock_guard lock{m_mutex};
        std::ranges::copy_if(m_containers, std::back_inserter(all), [](const auto* each) { return each != nullptr; });
    }
    order.update(all);
}

} // namespace Orla::Detail
