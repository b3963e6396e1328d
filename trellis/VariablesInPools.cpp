// The parts of `VParameter` and `VSlot` that access values in pools.

#include <trellis/VParameter.hpp>
#include <trellis/VSlot.hpp>

#include <trellis/detail/PoolState.hpp>
#include <trellis/detail/Wiring.hpp>

#include <trellis/VSlotContainer.hpp>
#include <trellis/Vprintf.hpp>

#include <algorithm>
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

StrongPtr<VValueBase> VSlot::getValueBase(const StrongPtr<ValuePool>& pool) const
{
    if (!pool)
        return nullptr;
    if (VFrame* const frame = VFrame::of(pool->runningFrame(), place())) {
        if (VValueBase* const value = frame->cell(m_cell).value)
            return StrongPtr<VValueBase>(value);
    }
    Detail::PoolState* const state = pool->state();
    return state ? state->find(*this) : nullptr;
}

StrongPtr<VValueBase> VSlot::getLocalValue(const StrongPtr<ValuePool>& pool) const
{
    if (StrongPtr<VValueBase> value = getValueBase(pool))
        return value;
    if (!pool || !pool->root())
        return nullptr;
    return pool->stateOrNew().make(*this);
}

bool VSlot::set(const StrongPtr<ValuePool>& pool, const std::string& text) const
{
    const StrongPtr<VValueBase> value = getLocalValue(pool);
    // Parse into a copy first: a refused text may leave a value partly changed.
    const StrongPtr<VValueBase> trial = value ? value->copy() : nullptr;
    if (!trial || !trial->setValueFromText(text) || !value->getValueFrom(WeakPtrImpl<VValueBase>(trial)))
        return false;
    m_parameter->notifyValueChange(value, pool, member());
    return true;
}

std::optional<std::string> VSlot::text(const StrongPtr<ValuePool>& pool) const
{
    const StrongPtr<VValueBase> value = getValueBase(pool);
    return value ? std::optional(value->Text()) : std::nullopt;
}

bool VSlot::setInitialText(const std::string& text)
{
    const StrongPtr<VValueBase> value = m_ownParameter->newValue();
    return value && value->setValueFromText(text) && m_ownParameter->setGlobalValue(value, {});
}

} // namespace Orla
