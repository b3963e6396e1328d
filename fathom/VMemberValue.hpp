#pragma once

#include <fathom/Double.hpp>
#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

#include <trellis/VValueComponents.hpp>

namespace Orla {

/// The data member \p Member of a value of type \p T, as a value that reads from and writes to
/// the containing value.
template<class T, class M, M T::*Member>
class FATHOM_VISIBLE VMemberValue final : public VTypedValueBase<M> {
public:
    explicit VMemberValue(const WeakPtrImpl<VValueBase>& container) { VMemberValue::setContainerValue(container); }

    /// Returns the entry for a component table.
    static VValueComponents::Component component(const char* name)
    {
        return {name, &typeid(M), [](VValueBase& container) -> StrongPtr<VValueBase> {
                    return Loam::makeStrong<VMemberValue>(&container);
                }};
    }

    StrongPtr<VValueBase> copy() const override
    {
        T container{};
        if (!read(container))
            return nullptr;
        return Loam::makeStrong<VValue<M>>(container.*Member);
    }

    bool getValueFrom(const WeakPtrImpl<VValueBase>& other) override
    {
        const StrongPtr<VValueBase> alive = other.lock();
        const VTypedValueBase<M>* typed = VTypedValueBase<M>::cast(alive.get());
        M value{};
        return typed && typed->getValue(value) && setValue(value);
    }

    bool setValueFromText(const std::string& text) override
    {
        M value{};
        return getValue(value) && VValueTrait<M>::setValueFromText(value, text) && setValue(value);
    }

    std::string Text() const override
    {
        M value{};
        return getValue(value) ? VValueTrait<M>::Text(value) : std::string();
    }

    WeakPtrImpl<VManagedObject, VManagedObjectBase> source() override
    {
        return m_container ? m_container->source() : nullptr;
    }

    Ageable& age() override { return m_container ? m_container->age() : m_ownAge; }
    const Ageable& age() const override { return m_container ? m_container->age() : m_ownAge; }

    StrongPtr<VValueCreator> getValueCreator() const override { return VValue<M>().getValueCreator(); }

    /// Attaches the part to \p container. If that is not a value of type \p T, the part is
    /// detached and can be neither read nor written.
    void setContainerValue(const WeakPtrImpl<VValueBase>& container) override
    {
        const StrongPtr<VValueBase> alive = container.lock();
        m_container = StrongPtr<VTypedValueBase<T>>(VTypedValueBase<T>::cast(alive.get()));
    }

    bool getValue(M& value) const override
    {
        if (m_container) {
            if (const T* held = m_container->held()) {
                value = held->*Member;
                return true;
            }
        }
        T container{};
        if (!read(container))
            return false;
        value = container.*Member;
        return true;
    }

    bool setValue(const M& value) override
    {
        T container{};
        if (!read(container))
            return false;
        container.*Member = Detail::independent(value);
        return m_container->setValue(container);
    }

    StrongPtr<ChunkBase> getChunkOfValue(unsigned long long count) const override
    {
        M value{};
        getValue(value);
        return VValue<M>(value).getChunkOfValue(count);
    }

private:
    bool read(T& container) const { return m_container && m_container->getValue(container); }

    StrongPtr<VTypedValueBase<T>> m_container;
    Ageable m_ownAge;
};

} // namespace Orla
