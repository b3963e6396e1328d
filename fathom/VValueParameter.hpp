#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VParameter.hpp>
#include <trellis/ValuePool.hpp>
#include <trellis/Vprintf.hpp>

#include <string>

namespace Orla {

/// A parameter whose values are of type \p T.
template<class T>
class FATHOM_VISIBLE VValueParameter : public VParameter {
public:
    VValueParameter(const T& initial, const std::string& name,
                    const StrongPtr<VCreationPreferences, InterfaceBase>& preferences)
        : VValueParameter{Loam::makeStrong<VValue<T>>(initial), name, preferences}
    {
    }

    ~VValueParameter() override = default;

    /// Returns a twin that shares the prototype value: a change through one is seen through
    /// the other.
    StrongPtr<VParameter, ValueNotifierList> copy() const override
    {
        const StrongPtr<VValue<T>> shared(m_prototype);
        StrongPtr<VParameter> twin(new VValueParameter(shared, Name(), creationPreferences()));
        twin->copyShadows(*this);
        return twin;
    }

    StrongPtr<VValueBase> createLocalVariable(const StrongPtr<ValuePool>& pool) const override
    {
        if (!pool)
            return nullptr;
        StrongPtr<VValueBase> value = pool->retrieveValue(Name());
        if (!VTypedValueBase<T>::cast(value.get())) {
            value = m_prototype->copy();
            addShadow(pool->root());
        }
        pool->createVariable(this, value);
        return value;
    }

    bool setGlobalValue(const StrongPtr<VValueBase>& value, const std::string& member) const override
    {
        // Ignores whether the component accepts the value: announces what the prototype now
        // holds.
        if (const StrongPtr<VValueBase> component = m_prototype->component(member)) {
            // The prototype must not share a selection with the given value.
            if constexpr (Detail::copiesPlainly<T>)
                component->getValueFrom(value);
            else
                component->getValueFrom(value ? value->copy() : nullptr);
        }
        if (isPrinted(50))
            Vprintf(50, "VParameter::setGlobalValue() got variable with %s\n", m_prototype->Text().c_str());
        touchValue(nullptr);
        return true;
    }

    StrongPtr<VValueBase> newValue() const override { return m_prototype->copy(); }

private:
    VValueParameter(const StrongPtr<VValue<T>>& prototype, const std::string& name,
                    const StrongPtr<VCreationPreferences>& preferences)
        : VParameter{prototype, name, preferences}, m_prototype{prototype.get()}
    {
    }

    VValue<T>* m_prototype; // owned by the base
};

} // namespace Orla
