#pragma once

#include <fathom/Double.hpp>
#include <fathom/Export.hpp>
#include <fathom/VComponentValue.hpp>

#include <trellis/VValueComponents.hpp>

#include <functional>
#include <type_traits>

namespace Orla {

/// What the function \p Get returns for a value of type \p T, as a component that can be read
/// only. Each read calls the function.
template<class T, auto Get, class M = std::remove_cvref_t<std::invoke_result_t<decltype(Get), const T&>>>
class FATHOM_VISIBLE VComputedValue final : public VComponentValue<T, M> {
public:
    explicit VComputedValue(const WeakPtrImpl<VValueBase>& container) : VComponentValue<T, M>{container} {}

    /// Returns the entry for a component table.
    static VValueComponents::Component component(const char* name)
    {
        return {name, &typeid(M), [](VValueBase& container) -> StrongPtr<VValueBase> {
                    return Loam::makeStrong<VComputedValue>(&container);
                }};
    }

    /// Returns false, as the other functions that write.
    bool getValueFrom(const WeakPtrImpl<VValueBase>&) override { return false; }
    bool setValueFromText(const std::string&) override { return false; }
    bool setValue(const M&) override { return false; }

    bool getValue(M& value) const override
    {
        if (const T* const content = this->held()) {
            value = std::invoke(Get, *content);
            return true;
        }
        T container{};
        if (!this->read(container))
            return false;
        value = std::invoke(Get, static_cast<const T&>(container));
        return true;
    }
};

} // namespace Orla
