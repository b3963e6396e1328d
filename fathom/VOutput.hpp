#pragma once

#include <fathom/Export.hpp>
#include <fathom/String.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VRunningCell.hpp>
#include <fathom/VValueParameter.hpp>

#include <concepts>
#include <string>
#include <type_traits>
#include <utility>

namespace Orla {

/// An output's parameter and the pool of the current evaluation. An update writes and reads
/// the output through it, with the operators below.
template<class T>
struct VOutputAssignmentContext {
    StrongPtr<VValueParameter<T>, ValueNotifierList> parameter;
    StrongPtr<ValuePool> pool;
};

/// An output in a pool, as `VOutput` returns it. Converts to the context above but owns
/// nothing, so concurrent updates do not contend for the reference count of a shared
/// parameter. Valid as long as both pointers that it was made from.
template<class T>
struct VOutputReference {
    const StrongPtr<VValueParameter<T>, ValueNotifierList>& parameter;
    const StrongPtr<ValuePool>& pool;
    VSlotPlace place; ///< where the output's container keeps the value

    operator VOutputAssignmentContext<T>() const { return {parameter, pool}; }
};

/// Declares an output of type \p T of a processing object: a member of the object's class,
/// initialised in its constructor.
template<class T>
class FATHOM_VISIBLE VOutput {
public:
    /// Adds an output \p name with the value \p initialValue to \p that.
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

    /// Adds a described output; see `VDescription`.
    VOutput(VSlotContainer* that, const std::string& name, const T& initialValue, const VDescriptionOf<T>& description)
        : VOutput{that, name, initialValue, VSlotDescription::of(description.parts())}
    {
        static_assert(Detail::ContentCheck<T>::isDone);
    }

    /// Reports a class that is not derived from `VObject`, in fewer lines than the other
    /// constructors.
    template<class Owner, class... Others>
        requires(!std::convertible_to<Owner*, VSlotContainer*>)
    VOutput(Owner*, const std::string&, Others&&...)
    {
        static_assert(!Detail::SlotOwner<Owner>::isValid);
    }

    const StrongPtr<VValueParameter<T>, ValueNotifierList>& parameter() const noexcept { return m_parameter; }

    /// Returns the output in \p pool, for writing or reading:
    ///
    ///     total(request.valuePool()) << sum;
    VOutputReference<T> operator()(const StrongPtr<ValuePool>& pool) const { return {m_parameter, pool, m_place}; }

    /// Returns the output's value in \p pool, or the initial value if the pool holds no value.
    /// The result is a copy by `VValueOperations`, as that of `TypedSlot::value`.
    T value(const StrongPtr<ValuePool>& pool) const
    {
        if (const VRunningCell<T> cell{pool.get(), m_place})
            cell.noteRead();
        const StrongPtr<VValueBase> found = m_parameter->getValueBase(pool);
        const VTypedValueBase<T>* typed = VTypedValueBase<T>::cast(found.get());
        T value{};
        if (typed && typed->getValue(value)) {
            if constexpr (!Detail::copiesPlainly<T>)
                value = VValueOperations<T>::copyOf(value);
            return value;
        }
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

// Values behind pointers are the same if their contents are; otherwise an update that rebuilds
// an equal result would always announce a change.
template<class T>
bool areSame(const StrongPtr<T>& a, const StrongPtr<T>& b)
{
    return !VValueOperations<StrongPtr<T>>::areDifferent(a, b);
}

// Writes `value` if the pool holds a different one; see `operator<<=`.
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
    if (!typed->setValue(independent(value)))
        return false;
    parameter->notifyValueChange(found, pool, member);
    return true;
}

template<class T>
bool assignInputIfDifferent(const TypedSlot<T>& input, const StrongPtr<ValuePool>& pool, const T& value)
{
    const StrongPtr<VSlot>& slot = input.slot();
    return slot && assignIfDifferent<T>(slot->parameter(), pool, slot->member(), value);
}

template<class>
inline constexpr bool isReported = false;

} // namespace Detail

/// Writes \p value if the pool holds a different one, and announces the change. Returns false
/// and announces nothing if the pool already holds \p value, if it holds no value of the type
/// yet, or if the parameter or the pool is null: this operator never creates a variable. This
/// and `<<` write a copy by `VValueOperations`.
template<class T>
bool operator<<=(const VOutputAssignmentContext<T>& out, const std::type_identity_t<T>& value)
{
    return Detail::assignIfDifferent<T>(out.parameter, out.pool, {}, value);
}

/// The same for an input, written by its own object.
template<class T>
bool operator<<=(const std::pair<const TypedSlot<T>, const StrongPtr<ValuePool>>& in,
                 const std::type_identity_t<T>& value)
{
    return Detail::assignInputIfDifferent(in.first, in.second, value);
}

/// The same for a text. A function, so its first argument may also be a pair that converts.
FATHOM_API bool operator<<=(const std::pair<const TypedSlot<std::string>, const StrongPtr<ValuePool>>& in,
                            const std::string& value);

/// Writes \p value without comparing, creates the variable if it is missing, and announces the
/// change. Returns false if the parameter is null or switched off, if the pool is null, or if
/// the value is refused.
template<class T>
bool operator<<(const VOutputAssignmentContext<T>& out, const std::type_identity_t<T>& value)
{
    if (!out.parameter || !out.parameter->isEnabled())
        return false;
    const StrongPtr<VValueBase> found = out.parameter->getLocalValue(out.pool);
    VTypedValueBase<T>* typed = VTypedValueBase<T>::cast(found.get());
    if (!typed || !typed->setValue(Detail::independent(value)))
        return false;
    out.parameter->notifyValueChange(found, out.pool);
    return true;
}

/// Reads the output's value in the pool, creating the variable if it is missing. Returns false
/// and leaves \p value unchanged if the parameter is null or switched off, or the pool is null.
/// Assigns as `getValue` does; `VOutput::value` returns a copy.
template<class T>
bool operator>>(const VOutputAssignmentContext<T>& out, T& value)
{
    if (!out.parameter || !out.parameter->isEnabled())
        return false;
    const StrongPtr<VValueBase> found = out.parameter->getLocalValue(out.pool);
    const VTypedValueBase<T>* typed = VTypedValueBase<T>::cast(found.get());
    return typed && typed->getValue(value);
}

/// The same for a `VOutputReference`. In the update of the output's object, these operators
/// access the value directly.
template<class T>
bool operator<<=(const VOutputReference<T>& out, const std::type_identity_t<T>& value)
{
    if (const VRunningCell<T> cell{out.pool.get(), out.place}) {
        if (VValue<T>* const held = cell.writable()) [[likely]] {
            if (Detail::areSame(std::as_const(*held).content(), value)) {
                cell.noteWritten();
                return false;
            }
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
        cell.noteRead();
        if (const VValue<T>* const held = cell.writable()) [[likely]] {
            value = held->content();
            return true;
        }
    }
    return VOutputAssignmentContext<T>(out) >> value;
}

// The following operators only report mistakes, in fewer lines than the candidates above.

template<class T, class V>
bool operator<<(const VOutput<T>&, const V&)
{
    static_assert(Detail::isReported<V>, "an output is written in a pool: output(request.valuePool()) << value");
    return false;
}

template<class T, class V>
bool operator<<=(const VOutput<T>&, const V&)
{
    static_assert(Detail::isReported<V>, "an output is written in a pool: output(request.valuePool()) <<= value");
    return false;
}

template<class T, class V>
    requires(!std::convertible_to<const V&, T>)
bool operator<<(const VOutputReference<T>&, const V&)
{
    static_assert(Detail::isReported<V>, "an output accepts values that convert to its type");
    return false;
}

template<class T, class V>
    requires(!std::convertible_to<const V&, T>)
bool operator<<=(const VOutputReference<T>&, const V&)
{
    static_assert(Detail::isReported<V>, "an output accepts values that convert to its type");
    return false;
}

} // namespace Orla
