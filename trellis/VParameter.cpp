#include <trellis/VParameter.hpp>

#include <trellis/detail/FrameHooks.hpp>
#include <trellis/detail/PoolState.hpp>
#include <trellis/detail/Wiring.hpp>

#include <trellis/VSlotContainer.hpp>
#include <trellis/Vprintf.hpp>

#include <algorithm>
#include <cassert>
#include <mutex>

namespace Orla {

namespace {

// A parameter is entered into a pool's table once, so one lock for all parameters is enough.
std::mutex& holdersMutex()
{
    static std::mutex& theMutex = *new std::mutex; // parameters may outlive static objects
    return theMutex;
}

StrongPtr<VValueBase> part(StrongPtr<VValueBase> value, const std::string& member)
{
    return value && !member.empty() ? value->component(member) : value;
}

} // namespace

VParameter::VParameter(const StrongPtr<VValueBase>& value, const std::string& name,
                       const StrongPtr<VCreationPreferences, InterfaceBase>& preferences)
    : m_value{value}, m_name{name}, m_preferences{preferences}
{
    assert(value && "a parameter owns a value");
}

VParameter::~VParameter()
{
    Detail::FrameHooks::parameterGone(*this);
}

StrongPtr<VValueBase> VParameter::DefaultValue() const
{
    return m_value;
}

StrongPtr<VParameter, ValueNotifierList> VParameter::copy() const
{
    StrongPtr<VParameter> twin(new VParameter(m_value, m_name, m_preferences));
    twin->copyShadows(*this);
    return twin;
}

StrongPtr<VValueBase> VParameter::newValue() const
{
    return m_value->copy();
}

StrongPtr<VSlotContainer> VParameter::owner() const
{
    if (StrongPtr<VSlotContainer> source = m_source.lock())
        return source;
    return m_creator.lock();
}

void VParameter::setEnabled(bool enabled) noexcept
{
    m_enabled = enabled;
    Detail::FrameHooks::parameterSwitched(*this);
}

StrongPtr<VValueBase> VParameter::createLocalVariable(const StrongPtr<ValuePool>& pool) const
{
    if (!pool)
        return nullptr;
    StrongPtr<VValueBase> value = pool->retrieveValue(m_name);
    if (!value || value->getType() != m_value->getType()) {
        value = newValue();
        addShadow(pool->root());
    }
    pool->createVariable(this, value);
    return value;
}

bool VParameter::setGlobalValue(const StrongPtr<VValueBase>& value, const std::string& member) const
{
    if (const StrongPtr<VValueBase> component = m_value->component(member))
        component->getValueFrom(value);
    if (isPrinted(50))
        Vprintf(50, "VParameter::setGlobalValue() got variable with %s\n", m_value->Text().c_str());
    touchValue(nullptr);
    return true;
}

StrongPtr<VValueBase> VParameter::getValueBase(const StrongPtr<ValuePool>& pool, const std::string& member,
                                               bool enabled) const
{
    if (!pool || !enabled)
        return nullptr;
    return part(pool->findVariable(*this), member);
}

StrongPtr<VValueBase> VParameter::getLocalValue(const StrongPtr<ValuePool>& pool, const std::string& member,
                                                bool enabled) const
{
    if (!pool || !enabled)
        return nullptr;
    StrongPtr<VValueBase> value = pool->findVariable(*this);
    if (!value && pool->root())
        value = pool->stateOrNew().make(*this);
    return part(std::move(value), member);
}

void VParameter::notifyValueChange(const StrongPtr<VValueBase>& value, const StrongPtr<ValuePool>& pool,
                                   const std::string& member) const
{
    if (value)
        value->age().touch();
    if (VFrame* const frame = pool && m_slot ? VFrame::of(pool->runningFrame(), m_slot->place()) : nullptr;
        frame && !m_slot->hasFlag(VSlot::Output))
        frame->changedOwnInput(m_slot->place().cell);
    // An unused pool needs a state only if a slot reads the parameter.
    if (pool && pool->root() && (pool->state() || !m_readers.empty()))
        pool->stateOrNew().announce(*this, member);
    else
        notifyListeners(pool);
}

void VParameter::touchValue(const StrongPtr<ValuePool>& pool) const
{
    if (pool) {
        notifyValueChange(getValueBase(pool), pool);
        return;
    }
    Detail::NetworkCore* const network = Detail::Wiring::networkOf(*this);
    const auto announceEverywhere = [this] {
        m_value->age().touch();
        Detail::PoolState::announcePrototype(*this);
        touch();
    };
    if (!network) {
        announceEverywhere();
        return;
    }
    const Detail::ChangeScope change{*network};
    announceEverywhere();
}

std::vector<StrongPtr<ValuePool>> VParameter::shadows() const
{
    std::vector<StrongPtr<ValuePool>> pools = ValueNotifierList::shadows();
    for (const StrongPtr<ValuePool>& pool : Detail::PoolState::poolsWithCell(*this)) {
        if (std::ranges::find(pools, pool) == pools.end())
            pools.push_back(pool);
    }
    return pools;
}

void VParameter::copyShadows(const VParameter& other) const
{
    for (const StrongPtr<ValuePool>& pool : other.shadows())
        addShadow(pool);
}

void VParameter::noteHolder(ValuePool& pool) const
{
    const StrongPtr<ValuePool> holder = WeakPtrImpl<ValuePool>(&pool).lock();
    const std::lock_guard lock{holdersMutex()};
    if (!m_holders)
        m_holders = std::make_unique<PoolList>();
    if (!m_holders->endsWith(holder))
        m_holders->add(holder);
}

std::vector<StrongPtr<ValuePool>> VParameter::holders() const
{
    const std::lock_guard lock{holdersMutex()};
    return m_holders ? m_holders->alive() : std::vector<StrongPtr<ValuePool>>{};
}

} // namespace Orla
