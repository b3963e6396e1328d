#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

namespace Orla {

/// What components of type \p M of values of type \p T have in common: a component follows its
/// containing value and has its age and source. A class derived from it reads and writes the
/// content.
template<class T, class M>
class FATHOM_VISIBLE VComponentValue : public VTypedValueBase<M> {
public:
    StrongPtr<VValueBase> copy() const override
    {
        M value{};
        if (!this->getValue(value))
            return nullptr;
        return Loam::makeStrong<VValue<M>>(value);
    }

    std::string Text() const override
    {
        M value{};
        return this->getValue(value) ? VValueTrait<M>::Text(value) : std::string();
    }

    WeakPtrImpl<VManagedObject, VManagedObjectBase> source() override
    {
        return m_container ? m_container->source() : nullptr;
    }

    Ageable& age() override { return m_container ? m_container->age() : m_ownAge; }
    const Ageable& age() const override { return m_container ? m_container->age() : m_ownAge; }

    StrongPtr<VValueCreator> getValueCreator() const override { return VValue<M>().getValueCreator(); }

    /// Attaches the component to \p container. If that is not a value of type \p T, the component
    /// is detached and can be neither read nor written.
    void setContainerValue(const WeakPtrImpl<VValueBase>& container) override
    {
        const StrongPtr<VValueBase> alive = container.lock();
        m_container = StrongPtr<VTypedValueBase<T>>(VTypedValueBase<T>::cast(alive.get()));
    }

    StrongPtr<ChunkBase> getChunkOfValue(unsigned long long count) const override
    {
        M value{};
        this->getValue(value);
        return VValue<M>(value).getChunkOfValue(count);
    }

protected:
    explicit VComponentValue(const WeakPtrImpl<VValueBase>& container)
    {
        VComponentValue::setContainerValue(container);
    }

    /// Returns the content of the containing value without a copy; null if it cannot be had so.
    const T* held() const { return m_container ? m_container->held() : nullptr; }

    /// Copies the content of the containing value. Returns false if the component is detached.
    bool read(T& container) const { return m_container && m_container->getValue(container); }

    /// \pre The component is attached.
    bool write(const T& container) { return m_container->setValue(container); }

private:
    StrongPtr<VTypedValueBase<T>> m_container;
    Ageable m_ownAge;
};

} // namespace Orla
