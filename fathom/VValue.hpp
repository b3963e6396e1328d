#pragma once

#include <fathom/Export.hpp>

#include <trellis/VManagedObject.hpp>
#include <trellis/VSlot.hpp>
#include <trellis/VValueBase.hpp>
#include <trellis/VValueCreator.hpp>
#include <trellis/VValueTrait.hpp>

#include <loam/AtomicCount.hpp>
#include <loam/Chunk.hpp>
#include <loam/Typename.hpp>

#include <atomic>
#include <concepts>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

// The classes through which the framework handles values of one type. A type
// joins by supplying `VValueTrait<T>`; everything else comes from here.

namespace Orla {

template<class T>
class TypedValueCreator;
template<class T>
class VValue;

/// What a value does with the `T` that it holds, where the plain way is not
/// right: specialise it for types with other ideas of "different" and "a copy".
template<class T>
struct VValueOperations {
    static bool areDifferent(const T& a, const T& b) { return !(a == b); }
    static T copyOf(const T& value) { return value; }
};

/// NaN, which is unordered with everything, is not different from anything.
template<>
struct VValueOperations<double> {
    static bool areDifferent(double a, double b) noexcept { return a < b || a > b; }
    static double copyOf(double value) noexcept { return value; }
};

/// A value whose type is known: reading, writing and comparing it.
template<class T>
class FATHOM_VISIBLE VTypedValueBase : public VValueBase {
public:
    const std::type_info& getType() const override { return typeid(T); }

    bool isDifferentFrom(const WeakPtrImpl<VValueBase>& other) const override;

    StrongPtr<ChunkBase> getChunk(unsigned long long count) const override { return getChunkOfValue(count); }

    /// Assigns the held value to \p value; false if it cannot be had.
    virtual bool getValue(T& value) const = 0;

    /// Assigns \p value to the held one; false if it is refused. The age stays as
    /// it is: announcing a change is the caller's business.
    virtual bool setValue(const T& value) = 0;

    /// A new array of \p count copies of the held value.
    /// \throw std::bad_alloc or a class derived from it; nothing is counted then.
    virtual StrongPtr<ChunkBase> getChunkOfValue(unsigned long long count) const = 0;

    /// \p value as a value of type \p T, or null.
    static VTypedValueBase* cast(VValueBase* value) noexcept
    {
        if (!value)
            return nullptr;
        // Nearly every value is a plain one; the general cast costs ten times as much.
        if (isPlain(*value))
            return static_cast<VValue<T>*>(value);
        return dynamic_cast<VTypedValueBase*>(value);
    }

    /// The held value itself where it is held in the plain way, else null.
    const T* held() const noexcept { return isPlain(*this) ? &static_cast<const VValue<T>*>(this)->m_value : nullptr; }

protected:
    VTypedValueBase() = default;
    explicit VTypedValueBase(Loam::RootFirst tag) noexcept : VValueBase{tag} {}
    VTypedValueBase(const VTypedValueBase&) = default;
    VTypedValueBase& operator=(const VTypedValueBase&) = default;

    // The content of the value that `other` refers to, if nothing can release that value
    // before the content is read: the process has one thread, and reading calls no code. Null
    // if that is not certain.
    static const T* contentAtOnce(const WeakPtrImpl<VValueBase>& other) noexcept
    {
        const VValueBase* const value = other.peek();
        return value && isPlain(*value) ? &static_cast<const VValue<T>*>(value)->m_value : nullptr;
    }

private:
    static bool isPlain(const VValueBase& value) noexcept
    {
        const std::type_info& type = typeid(value);
        return &type == &typeid(VValue<T>) || type == typeid(VValue<T>);
    }
};

/// The value that holds one \p T.
template<class T>
class FATHOM_VISIBLE VValue : public VTypedValueBase<T>, public Ageable {
public:
    using Creator = TypedValueCreator<T>;

    VValue() : m_value{} {}
    explicit VValue(const T& value) : m_value(value) {}
    VValue(const VValue&) = delete;
    VValue& operator=(const VValue&) = delete;

    ~VValue() override
    {
        if (theTypedValueCreator)
            theTypedValueCreator->countDestroyedValue();
    }

    const std::type_info& getType() const override { return typeid(T); }

    StrongPtr<VValueBase> copy() const override
    {
        return create([this] { return VValueOperations<T>::copyOf(m_value); });
    }

    bool getValueFrom(const WeakPtrImpl<VValueBase>& other) override
    {
        if constexpr (std::is_trivially_copyable_v<T>) {
            if (const T* const its = VTypedValueBase<T>::contentAtOnce(other)) {
                m_value = *its;
                return true;
            }
        }
        const StrongPtr<VValueBase> alive = other.lock();
        const VTypedValueBase<T>* typed = VTypedValueBase<T>::cast(alive.get());
        return typed && typed->getValue(m_value);
    }

    bool setValueFromText(const std::string& text) override { return VValueTrait<T>::setValueFromText(m_value, text); }

    std::string Text() const override { return VValueTrait<T>::Text(m_value); }

    WeakPtrImpl<VManagedObject, VManagedObjectBase> source() override { return nullptr; }

    Ageable& age() override { return *this; }
    const Ageable& age() const override { return *this; }

    StrongPtr<VValueCreator> getValueCreator() const override
    {
        // After the creator was destroyed at exit or unload there is none.
        return s_creatorIsGone ? nullptr : StrongPtr<VValueCreator>(&myTypedValueCreator());
    }

    bool getValue(T& value) const override
    {
        value = m_value;
        return true;
    }

    bool setValue(const T& value) override
    {
        m_value = value;
        return true;
    }

    StrongPtr<ChunkBase> getChunkOfValue(unsigned long long count) const override
    {
        if (count > std::numeric_limits<std::size_t>::max())
            throw std::bad_array_new_length{};
        return Loam::makeStrong<Loam::Chunk<T>>(static_cast<std::size_t>(count), m_value);
    }

    /// The held value itself.
    T& content() noexcept { return m_value; }
    const T& content() const noexcept { return m_value; }

    /// The one creator of the type in the process, made and registered when it is
    /// first asked for.
    static TypedValueCreator<T>& myTypedValueCreator()
    {
        static TypedValueCreator<T> myStaticTypedValueCreator;
        return myStaticTypedValueCreator;
    }

    /// Set when the library is loaded, so that the type is registered before
    /// anybody asks; null again once the creator is gone.
    static TypedValueCreator<T>* theTypedValueCreator;

private:
    friend class TypedValueCreator<T>;
    friend class VTypedValueBase<T>;

    static inline constinit bool s_creatorIsGone = false;

    // Makes a value of what `content` returns, in its place: a type that is passed on would
    // be copied twice.
    template<class Content>
    static StrongPtr<VValue> create(Content&& content)
    {
        if constexpr (alignof(VValue) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__)
            return StrongPtr<VValue>(new (Loam::RootFirst{}) VValue(Loam::RootFirst{}, content));
        else
            return StrongPtr<VValue>(new VValue(InPlace{}, content));
    }

    template<class Content>
    VValue(Loam::RootFirst tag, Content& content) : VTypedValueBase<T>{tag}, m_value(content())
    {
    }

    struct InPlace {};
    template<class Content>
    VValue(InPlace, Content& content) : m_value(content())
    {
    }

    T m_value;
};

template<class T>
TypedValueCreator<T>* VValue<T>::theTypedValueCreator = &VValue<T>::myTypedValueCreator();

/// Makes values of type \p T; registered under the type's name.
template<class T>
class FATHOM_VISIBLE TypedValueCreator : public VValueCreator {
public:
    TypedValueCreator() : VValueCreator{typeid(T)} { registerCreator(this, Loam::Typename(typeid(T))); }

    ~TypedValueCreator() override
    {
        if (VValue<T>::theTypedValueCreator != this)
            return; // not the one that the values know
        // Values that live longer must not count here.
        VValue<T>::theTypedValueCreator = nullptr;
        VValue<T>::s_creatorIsGone = true;
    }

    StrongPtr<VValueBase> create(const std::string& text, bool& ok) override
    {
        StrongPtr<VValue<T>> value = VValue<T>::create([] { return T{}; });
        ok = value->VValue<T>::setValueFromText(text);
        return value;
    }

    void countDestroyedValue() noexcept { Loam::countUp(m_destroyedValues); }

    /// How many values of the type were destroyed so far.
    std::uint32_t destroyedValues() const noexcept { return m_destroyedValues.load(std::memory_order_relaxed); }

private:
    std::atomic<std::uint32_t> m_destroyedValues{0};
};

template<class T>
bool VTypedValueBase<T>::isDifferentFrom(const WeakPtrImpl<VValueBase>& other) const
{
    const T* const mine = held();
    if constexpr (std::is_arithmetic_v<T>) {
        if (const T* const its = contentAtOnce(other); mine && its)
            return VValueOperations<T>::areDifferent(*mine, *its);
    }
    const StrongPtr<VValueBase> alive = other.lock();
    const VTypedValueBase* typed = cast(alive.get());
    if (!typed)
        return true;
    const T* const its = typed->held();
    if (mine && its)
        return VValueOperations<T>::areDifferent(*mine, *its);
    T a{};
    T b{};
    return !getValue(a) || !typed->getValue(b) || VValueOperations<T>::areDifferent(a, b);
}

template<class T>
    requires(!std::convertible_to<const T&, std::string>)
bool VSlot::set(const StrongPtr<ValuePool>& pool, const T& value) const
{
    const StrongPtr<VValueBase> found = getLocalValue(pool);
    VTypedValueBase<T>* const typed = VTypedValueBase<T>::cast(found.get());
    if (!typed || !typed->setValue(value))
        return false;
    parameter()->notifyValueChange(found, pool, member());
    return true;
}

template<class T>
std::optional<T> VSlot::get(const StrongPtr<ValuePool>& pool) const
{
    const StrongPtr<VValueBase> found = getValueBase(pool);
    const VTypedValueBase<T>* const typed = VTypedValueBase<T>::cast(found.get());
    T value{};
    return typed && typed->getValue(value) ? std::optional<T>(std::move(value)) : std::nullopt;
}

} // namespace Orla
