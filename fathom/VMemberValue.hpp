#pragma once

#include <fathom/Double.hpp>
#include <fathom/Export.hpp>
#include <fathom/VComponentValue.hpp>

#include <trellis/VValueComponents.hpp>

namespace Orla {

/// The data member \p Member of a value of type \p T, as a value that reads from and writes to
/// the containing value.
template<class T, class M, M T::*Member>
class FATHOM_VISIBLE VMemberValue final : public VComponentValue<T, M> {
public:
    explicit VMemberValue(const WeakPtrImpl<VValueBase>& container) : VComponentValue<T, M>{container} {}

    /// Returns the entry for a component table.
    static VValueComponents::Component component(const char* name)
    {
        return {name, &typeid(M), [](VValueBase& container) -> StrongPtr<VValueBase> {
                    return Loam::makeStrong<VMemberValue>(&container);
                }};
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

    bool getValue(M& value) const override
    {
        if (const T* const content = this->held()) {
            value = content->*Member;
            return true;
        }
        T container{};
        if (!this->read(container))
            return false;
        value = container.*Member;
        return true;
    }

    bool setValue(const M& value) override
    {
        T container{};
        if (!this->read(container))
            return false;
        container.*Member = Detail::independent(value);
        return this->write(container);
    }
};

} // namespace Orla
