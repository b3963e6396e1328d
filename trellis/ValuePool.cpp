#include <trellis/ValuePool.hpp>

#include <trellis/detail/PoolState.hpp>

#include <trellis/VParameter.hpp>
#include <trellis/VSlot.hpp>

#include <algorithm>
#include <utility>

namespace Orla {

ValuePool::ValuePool(std::string name, std::string resultTag)
    : m_name{std::move(name)}, m_resultTag{std::move(resultTag)}
{
}

ValuePool::ValuePool(Detail::PoolState& state) : ValuePool{state.pool().m_name, state.pool().m_resultTag}
{
    state.m_views.push_back(this);
    m_state = &state;
    m_isView = true;
}

ValuePool::~ValuePool()
{
    if (!m_state)
        return;
    if (m_isView)
        std::erase(m_state->m_views, this);
    else
        delete m_state;
}

const std::string& ValuePool::Name() const noexcept
{
    return m_name;
}

Detail::PoolState& ValuePool::stateOrNew()
{
    if (!m_state)
        m_state = new Detail::PoolState(*this);
    return *m_state;
}

StrongPtr<ValuePool> ValuePool::root() const
{
    if (m_isView && !m_state)
        return nullptr;
    const ValuePool* const pool = m_isView ? &m_state->pool() : this;
    return WeakPtrImpl<ValuePool>(const_cast<ValuePool*>(pool)).lock();
}

StrongPtr<VValueBase> ValuePool::retrieveValue(const std::string& name) const
{
    return m_state ? m_state->findName(name) : nullptr;
}

void ValuePool::createVariable(const VParameter* parameter, const StrongPtr<VValueBase>& value)
{
    if (parameter && value)
        stateOrNew().enter(*parameter, value);
}

VValueBase* ValuePool::lookUp(const VParameter& parameter) const
{
    if (const VSlot* const slot = parameter.slot(); m_running && slot) {
        if (VFrame* const frame = VFrame::of(m_running, slot->place()); frame && !slot->isConnected()) {
            if (VValueBase* const value = frame->cell(slot->place().cell).value)
                return value;
        }
    }
    return m_state ? m_state->find(parameter) : nullptr;
}

std::size_t ValuePool::variableCount() const
{
    return m_state ? m_state->variableCount() : 0;
}

} // namespace Orla
