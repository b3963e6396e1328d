#include <trellis/VParameter.hpp>

#include <trellis/PoolRoot.hpp>
#include <trellis/VActionNotifier.hpp>
#include <trellis/VObject.hpp>
#include <trellis/VSlotContainer.hpp>
#include <trellis/VValueComponents.hpp>
#include <trellis/Vprintf.hpp>

#include <cassert>

namespace Orla {

namespace {

std::uint64_t nextId()
{
    static std::uint64_t last = 0;
    return ++last;
}

// Asks the processor to have the memory at hand soon; says nothing about its content.
void prefetch([[maybe_unused]] const void* place) noexcept
{
#if defined(__GNUC__)
    __builtin_prefetch(place);
#endif
}

} // namespace

VParameter::VParameter(const StrongPtr<VValueBase>& value, const std::string& name,
                       const StrongPtr<VCreationPreferences, InterfaceBase>& preferences)
    : m_id{nextId()}, m_value{value}, m_name{name}, m_preferences{preferences}
{
    assert(value && "a parameter owns a value");
}

VParameter::~VParameter()
{
    for (const StrongPtr<ValuePool>& pool : m_holders.alive())
        pool->forgetParameter(*this);
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

StrongPtr<VValueBase> VParameter::createLocalVariable(const StrongPtr<ValuePool>& pool) const
{
    if (!pool)
        return nullptr;
    StrongPtr<VValueBase> value = pool->retrieveValue(m_name);
    if (!value || value->getType() != m_value->getType()) {
        value = newValue();
        addShadow(pool);
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

StrongPtr<VValueBase> VParameter::getValueBase(const StrongPtr<ValuePool>& pool, const std::string& member,
                                               bool enabled) const
{
    if (!pool || !enabled)
        return nullptr;
    StrongPtr<VValueBase> value = pool->findVariable(*this);
    if (!value || member.empty())
        return value;
    return value->component(member);
}

StrongPtr<VValueBase> VParameter::getLocalValue(const StrongPtr<ValuePool>& pool, const std::string& member,
                                                bool enabled) const
{
    if (!pool || !enabled)
        return nullptr;
    StrongPtr<VValueBase> value = pool->findVariable(*this);
    if (!value && pool->root().m_data) {
        ValuePool& root = pool->root();
        if (const StrongPtr<VSlotContainer> container = owner()) {
            ValuePool& place = root.m_data->scope(*container).placeFor(*this);
            value = createLocalVariable(WeakPtrImpl<ValuePool>(&place).lock());
        } else if (!root.findName(m_name)) {
            value = createLocalVariable(WeakPtrImpl<ValuePool>(&root).lock());
        } else {
            // Whoever entered the name meant another parameter's value.
            value = createLocalVariable(root.m_data->looseScope(m_name));
        }
    }
    if (!value || member.empty())
        return value;
    return value->component(member);
}

void VParameter::notifyValueChange(const StrongPtr<VValueBase>& value, const StrongPtr<ValuePool>& pool,
                                   const std::string& member) const
{
    if (value)
        value->age().touch();
    if (pool)
        makeReadersDue(pool->root(), member);
    notifyListeners(pool);
}

void VParameter::touchValue(const StrongPtr<ValuePool>& pool) const
{
    if (pool) {
        notifyValueChange(getValueBase(pool), pool);
        return;
    }
    m_value->age().touch();
    for (const StrongPtr<ValuePool>& holder : m_holders.alive())
        makeReadersDue(holder->root(), {});
    touch();
}

void VParameter::makeReadersDue(ValuePool& root, const std::string& member) const
{
    PoolRoot* data = root.m_data.get();
    if (!data)
        return;
    const bool isObserved = data->observer != nullptr;
    // A clock may have a hundred thousand readers, each somewhere else in memory.
    constexpr std::size_t Ahead = 8;
    const std::size_t count = m_readers.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (i + 2 * Ahead < count)
            prefetch(m_readers[i + 2 * Ahead]);
        if (i + Ahead < count)
            prefetch(m_readers[i + Ahead]->m_container);
        VSlot* const reader = m_readers[i];
        if (reader->hasFlag(VSlot::Passive))
            continue;
        if (reader->m_member && !VValueComponents::overlap(*reader->m_member, member))
            continue;
        VSlotContainer& container = *reader->m_container;
        if (!container.m_object)
            continue;
        VScope& scope = data->scope(container);
        // An object that writes an input of its own knows about it.
        if (scope.m_updating && !reader->readsOthers())
            continue;
        if (isObserved) [[unlikely]]
            scope.makeDue(VScheduler::Observer::Cause::Changed, this);
        else
            scope.makeDue();
    }
}

VValueBase* VParameter::lookUpUncached(const ValuePool& root) const
{
    if (!root.m_data)
        return nullptr;
    const PoolRoot::Variable* entry = root.m_data->variables.find(m_id);
    if (!entry)
        return nullptr;
    m_cachedVersion = root.m_version;
    m_cachedValue = entry->value.get();
    return m_cachedValue;
}

void VParameter::noteHolder(ValuePool& root) const
{
    m_holders.add(&root);
}

} // namespace Orla
