#pragma once

#include <fathom/Export.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VRunningCell.hpp>
#include <fathom/VValueParameter.hpp>

#include <string>
#include <type_traits>
#include <utility>

namespace Orla {

/// An output's parameter and the pool of the current evaluation: what an update
/// writes to and reads from with the operators below.
template<class T>
struct VOutputAssignmentContext {
    StrongPtr<VValueParameter<T>, ValueNotifierList> parameter;
    StrongPtr<ValuePool> pool;
};

/// An output in a pool, as `VOutput` returns it: converts to the context above, but shares
/// in owning nothing, so that updates in several threads do not count references to the
/// parameter that they share. Valid as long as both pointers that it was made from.
template<class T>
struct VOutputReference {
    const StrongPtr<VValueParameter<T>, ValueNotifierList>& parameter;
    const StrongPtr<ValuePool>& pool;
    VSlotPlace place; ///< where the output's container keeps the value

    operator VOutputAssignmentContext<T>() const { return {parameter, pool}; }
};

/// Declares an output of type \p T of a processing object: a member of the
/// object's class, made in its constructor.
template<class T>
class FATHOM_VISIBLE VOutput {
public:
    /// Offers an output \p name of \p that, which starts from \p initialValue.
    VOutput(VSlotContainer* that, const std::string& name, const T& initialValue,
            const StrongPtr<VCreationPreferences, InterfaceBase>& preferences = {})
        : m_parameter{new VValueParameter<T>(initialValue, name, preferences)}
    {
        if (!that) {
            VSlotGlobals::assertionFail(nullptr, name, typeid(T));
            return;
        }
        m_parameter->setSource(that);
        if (const StrongPtr<VSlot> slot = that->registerOutput(m_parameter, name))
            m_place = slot->place();
    }

    const StrongPtr<VValueParameter<T>, ValueNotifierList>& parameter() const noexcept { return m_parameter; }

    /// The output in \p pool, to be written or read:
    ///
    ///     total(request.valuePool()) << sum;
    VOutputReference<T> operator()(const StrongPtr<ValuePool>& pool) const { return {m_parameter, pool, m_place}; }

    /// The output in \p pool, or the initial value where the pool holds no value.
    T value(const StrongPtr<ValuePool>& pool) const
    {
        const StrongPtr<VValueBase> found = m_parameter->getValueBase(pool);
        const VTypedValueBase<T>* typed = VTypedValueBase<T>::cast(found.get());
        T value{};
        if (typed && typed->getValue(value))
            return value;
        const StrongPtr<VValueBase> initial = m_parameter->newValue();
        if (const auto* const prototype = VTypedValueBase<T>::cast(initial.get()))
            prototype->getValue(value);
        return value;
    }

private:
    StrongPtr<VValueParameter<T>, ValueNotifierList> m_parameter;
    VSlotPlace m_place;
};

namespace Detail {

template<class T>
bool areSame(const T& a, const T& b)
{
    return a == b;
}

// What pools share through a pointer is the same when its content is, or else an
// update that makes its result anew would be a change each time.
template<class T>
bool areSame(const StrongPtr<T>& a, const StrongPtr<T>& b)
{
    return !VValueOperations<StrongPtr<T>>::areDifferent(a, b);
}

// Writes `value` where the pool holds a different one; see `operator<<=`.
template<class T>
bool assignIfDifferent(const StrongPtr<VParameter>& parameter, const StrongPtr<ValuePool>& pool,
                       const std::string& member, const T& value)
{
    if (!parameter)
        return false;
    const StrongPtr<VValueBase> found = parameter->getValueBase(pool, member, parameter->isEnabled());
    VTypedValueBase<T>* typed = VTypedValueBase<T>::cast(found.get());
    if (!typed)
        return false;
    if (const T* held = typed->held()) {
        if (areSame(*held, value))
            return false;
    } else {
        T current(value);
        typed->getValue(current);
        if (areSame(current, value))
            return false;
    }
    if (!typed->setValue(value))
        return false;
    parameter->notifyValueChange(found, pool, member);
    return true;
}

} // namespace Detail

/// Writes \p value if the pool holds a different one, and announces it. False,
/// and nobody is told, if the value is held already and also if the pool holds
/// no value of the type yet: this operator never makes a variable.
template<class T>
bool operator<<=(const VOutputAssignmentContext<T>& out, const T& value)
{
    return Detail::assignIfDifferent<T>(out.parameter, out.pool, {}, value);
}

/// The same for an input, written by its own object.
template<class T>
bool operator<<=(const std::pair<const TypedSlot<T>, const StrongPtr<ValuePool>>& in, const T& value)
{
    const StrongPtr<VSlot>& slot = in.first.slot();
    return slot && Detail::assignIfDifferent<T>(slot->parameter(), in.second, slot->member(), value);
}

/// Writes \p value without comparing, makes the variable where the pool has none,
/// and announces it. False if the parameter is switched off or refuses the value.
template<class T>
bool operator<<(const VOutputAssignmentContext<T>& out, const T& value)
{
    if (!out.parameter || !out.parameter->isEnabled())
        return false;
    const StrongPtr<VValueBase> found = out.parameter->getLocalValue(out.pool);
    VTypedValueBase<T>* typed = VTypedValueBase<T>::cast(found.get());
    if (!typed || !typed->setValue(value))
        return false;
    out.parameter->notifyValueChange(found, out.pool);
    return true;
}

/// Reads the output's value in the pool, which is made where there is none.
/// False, and \p value as it was, if the parameter is switched off.
template<class T>
bool operator>>(const VOutputAssignmentContext<T>& out, T& value)
{
    if (!out.parameter || !out.parameter->isEnabled())
        return false;
    const StrongPtr<VValueBase> found = out.parameter->getLocalValue(out.pool);
    const VTypedValueBase<T>* typed = VTypedValueBase<T>::cast(found.get());
    return typed && typed->getValue(value);
}

/// The same for what `VOutput` returns. In the update of the output's object they reach
/// the value directly.
template<class T>
bool operator<<=(const VOutputReference<T>& out, const std::type_identity_t<T>& value)
{
    if (const VRunningCell<T> cell{out.pool.get(), out.place}) {
        if (VValue<T>* const held = cell.writable()) [[likely]] {
            if (Detail::areSame(std::as_const(*held).content(), value))
                return false;
            cell.write(*held, value);
            return true;
        }
    }
    return VOutputAssignmentContext<T>(out) <<= value;
}

template<class T>
bool operator<<(const VOutputReference<T>& out, const std::type_identity_t<T>& value)
{
    if (const VRunningCell<T> cell{out.pool.get(), out.place}) {
        if (VValue<T>* const held = cell.writable()) [[likely]] {
            cell.write(*held, value);
            return true;
        }
    }
    return VOutputAssignmentContext<T>(out) << value;
}

template<class T>
bool operator>>(const VOutputReference<T>& out, T& value)
{
    if (const VRunningCell<T> cell{out.pool.get(), out.place}) {
        if (const VValue<T>* const held = cell.writable()) [[likely]] {
            value = held->content();
            return true;
        }
    }
    return VOutputAssignmentContext<T>(out) >> value;
}

} // namespace Orla
