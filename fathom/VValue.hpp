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

// The classes through which the framework handles values of one type. A type supplies only
// `VValueTrait<T>`; these classes provide everything else.

namespace Orla {

template<class T>
class TypedValueCreator;
template<class T>
class VValue;

/// How a value compares and copies the `T` that it holds. Specialise it for types whose `==`
/// or copy constructor is not suitable.
///
/// Values of different pools, the initial value, and what callers pass and receive share
/// nothing but what `copyOf` shares: the constructor of a value, `TypedSlot`, `VSlot::set` and
/// `get`, `VOutput::value` and the writing operators of outputs call it. `getValue`, and
/// `setValue` of a `StrongPtr`, assign; they share what an assignment of \p T shares.
template<class T>
struct VValueOperations {
    /// `copyOf` does what the copy constructor does, so values need not call it in order to
    /// separate copies. Leave this out of a specialisation whose `copyOf` does more.
    static constexpr bool copiesPlainly = true;

    static bool areDifferent(const T& a, const T& b)
        requires requires { !(a == b); }
    {
        return !(a == b);
    }
    static T copyOf(const T& value) { return value; }
};

/// NaN, which is unordered, does not differ from anything.
template<>
struct VValueOperations<double> {
    static constexpr bool copiesPlainly = true;

    static bool areDifferent(double a, double b) noexcept { return a < b || a > b; }
    static double copyOf(double value) noexcept { return value; }
};

/// What a type needs in order to be the type of a value: a default constructor and copies, a
/// text form, and `==` or its own `VValueOperations`.
template<class T>
concept ValueContent =
    std::default_initializable<T> && std::copyable<T> && requires(T& value, const T& other, const std::string& text) {
        {
            VValueTrait<T>::Text(other)
        } -> std::convertible_to<std::string>;
        {
            VValueTrait<T>::setValueFromText(value, text)
        } -> std::convertible_to<bool>;
    } && requires(const T& a, const T& b) {
        {
            VValueOperations<T>::areDifferent(a, b)
        } -> std::convertible_to<bool>;
        {
            VValueOperations<T>::copyOf(a)
        } -> std::convertible_to<T>;
    };

namespace Detail {

template<class T>
inline constexpr bool isValueContent = ValueContent<T>;

// Reports, once per type, that its values cannot be made.
template<class T>
struct ContentCheck {
    static_assert(isValueContent<T>, "a type of values has a default constructor, copies, == and a VValueTrait with "
                                     "Text and setValueFromText");
    static constexpr bool isDone = true;
};

// Replaces what a type lacks, so that the check above is all that the compiler reports.
template<class T>
struct NoContent : ContentCheck<T> {
    static std::string Text(const T&) { return {}; }
    static bool setValueFromText(T&, const std::string&) { return false; }
    static bool areDifferent(const T&, const T&) { return false; }
};

template<class T>
using TraitOf = std::conditional_t<isValueContent<T>, VValueTrait<T>, NoContent<T>>;

template<class T>
inline constexpr bool isComparable = requires(const T& a, const T& b) { VValueOperations<T>::areDifferent(a, b); };

template<class T>
using ComparisonOf = std::conditional_t<isComparable<T>, VValueOperations<T>, NoContent<T>>;

template<class T>
inline constexpr bool copiesPlainly = requires { requires VValueOperations<T>::copiesPlainly; };

// Returns a copy that shares nothing with `value` that it must not share, or `value` itself if
// an ordinary copy will do.
template<class T>
decltype(auto) independent(const T& value)
{
    if constexpr (copiesPlainly<T>)
        return (value);
    else
        return VValueOperations<T>::copyOf(value);
}

// Pointers are assigned as such; other types are separated when a value takes them.
template<class T>
inline constexpr bool sharesAssigned = copiesPlainly<T>;
template<class T>
inline constexpr bool sharesAssigned<StrongPtr<T>> = true;

} // namespace Detail

/// A value whose type is known: reads, writes and compares it.
template<class T>
class FATHOM_VISIBLE VTypedValueBase : public VValueBase {
public:
    const std::type_info& getType() const override { return typeid(T); }

    bool isDifferentFrom(const WeakPtrImpl<VValueBase>& other) const override;

    StrongPtr<ChunkBase> getChunk(unsigned long long count) const override { return getChunkOfValue(count); }

    /// Assigns the held value to \p value. Returns false if it is not available. A pointer, or
    /// an `Enum`, then refers to the object that the value holds: change that only in order to
    /// change the value, and announce it.
    virtual bool getValue(T& value) const = 0;

    /// Assigns \p value to the held value. Returns false if it is refused. Does not change the
    /// age: the caller announces the change. A `StrongPtr` is assigned as such: the value and
    /// the caller then share the object.
    virtual bool setValue(const T& value) = 0;

    /// Returns a new array of \p count copies of the held value. The elements of the array of a
    /// `bool` are of type `char`, 0 or 1.
    /// \throw std::bad_alloc or a class derived from it; the memory count is unchanged then.
    virtual StrongPtr<ChunkBase> getChunkOfValue(unsigned long long count) const = 0;

    /// Returns \p value as a value of type \p T, or null if it is null or has another type.
    ///
    /// The result owns nothing: keep the strong pointer for as long as you use it. The result
    /// of `cast(slot.getValueBase(pool).get())` may dangle after the statement.
    static VTypedValueBase* cast(VValueBase* value) noexcept
    {
        if (!value)
            return nullptr;
        // Nearly every value is plain; the general cast costs ten times as much.
        if (isPlain(*value))
            return static_cast<VValue<T>*>(value);
        return dynamic_cast<VTypedValueBase*>(value);
    }

    /// Returns the held value itself if this is a `VValue<T>`, else null.
    const T* held() const noexcept { return isPlain(*this) ? &static_cast<const VValue<T>*>(this)->m_value : nullptr; }

protected:
    VTypedValueBase() = default;
    explicit VTypedValueBase(Loam::RootFirst tag) noexcept : VValueBase{tag} {}
    VTypedValueBase(const VTypedValueBase&) = default;
    VTypedValueBase& operator=(const VTypedValueBase&) = default;

    // Returns the content of the value that `other` refers to, if nothing can release that
    // value before the content is read: the process has one thread, and reading calls no code.
    // Returns null if that is not certain.
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

/// A value that holds one \p T.
template<class T>
class FATHOM_VISIBLE VValue : public VTypedValueBase<T>, public Ageable {
public:
    using Creator = TypedValueCreator<T>;

    VValue() : m_value{} { countCreated(); }
    /// Holds a copy of \p value by `VValueOperations`.
    explicit VValue(const T& value) : m_value(Detail::independent(value)) { countCreated(); }
    VValue(const VValue&) = delete;
    VValue& operator=(const VValue&) = delete;

    ~VValue() override
    {
        if (!theTypedValueCreator)
            return;
        theTypedValueCreator->countDestroyedValue();
        if constexpr (IsCounted)
            theTypedValueCreator->countValue(-1);
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
        if (!typed || !typed->getValue(m_value))
            return false;
        if constexpr (!Detail::sharesAssigned<T>)
            m_value = VValueOperations<T>::copyOf(m_value);
        return true;
    }

    bool setValueFromText(const std::string& text) override
    {
        return Detail::TraitOf<T>::setValueFromText(m_value, text);
    }

    std::string Text() const override { return Detail::TraitOf<T>::Text(m_value); }

    WeakPtrImpl<VManagedObject, VManagedObjectBase> source() override { return nullptr; }

    Ageable& age() override { return *this; }
    const Ageable& age() const override { return *this; }

    StrongPtr<VValueCreator> getValueCreator() const override
    {
        // Null after the creator was destroyed at exit or unload.
        return s_creatorIsGone ? nullptr : StrongPtr<VValueCreator>(&myTypedValueCreator());
    }

    bool getValue(T& value) const override
    {
        value = m_value;
        return true;
    }

    bool setValue(const T& value) override
    {
        if constexpr (Detail::sharesAssigned<T>)
            m_value = value;
        else
            m_value = VValueOperations<T>::copyOf(value);
        return true;
    }

    StrongPtr<ChunkBase> getChunkOfValue(unsigned long long count) const override
    {
        if (count > std::numeric_limits<std::size_t>::max())
            throw std::bad_array_new_length{};
        using Element = std::conditional_t<std::is_same_v<T, bool>, char, T>;
        return Loam::makeStrong<Loam::Chunk<Element>>(static_cast<std::size_t>(count), m_value);
    }

    /// Returns the held value itself.
    T& content() noexcept { return m_value; }
    const T& content() const noexcept { return m_value; }

    /// Returns the type's only creator in the process, creating and registering it on first
    /// use.
    static TypedValueCreator<T>& myTypedValueCreator()
    {
        static TypedValueCreator<T> myStaticTypedValueCreator;
        return myStaticTypedValueCreator;
    }

    /// Set when the library is loaded, so the type is registered before first use; null after
    /// the creator is destroyed.
    static TypedValueCreator<T>* theTypedValueCreator;

private:
    friend class TypedValueCreator<T>;
    friend class VTypedValueBase<T>;

    static inline constinit bool s_creatorIsGone = false;

    // Creates a value in place from what `content` returns; passing a `T` on would copy it
    // twice.
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
        countCreated();
    }

    struct InPlace {};
    template<class Content>
    VValue(InPlace, Content& content) : m_value(content())
    {
        countCreated();
    }

    // A library stays in memory while values exist whose code it contains. The code of these
    // two types, which are created most often, is always in fathom itself.
    static constexpr bool IsCounted = !std::is_same_v<T, double> && !std::is_same_v<T, char>;

    // Every constructor calls this. Code that only reads values need not know their text form.
    static void countCreated() noexcept
    {
        static_assert(Detail::ContentCheck<T>::isDone);
        if constexpr (IsCounted) {
            if (theTypedValueCreator)
                theTypedValueCreator->countValue(1);
        }
    }

    T m_value;
};

template<class T>
TypedValueCreator<T>* VValue<T>::theTypedValueCreator = &VValue<T>::myTypedValueCreator();

/// Creates values of type \p T; registered under the type's name.
template<class T>
class FATHOM_VISIBLE TypedValueCreator : public VValueCreator {
public:
    TypedValueCreator() : VValueCreator{typeid(T)} { registerCreator(this, Loam::Typename(typeid(T))); }

    ~TypedValueCreator() override
    {
        if (VValue<T>::theTypedValueCreator != this)
            return; // not the creator that the values use
        // Values that outlive the creator must not count here.
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

    /// Returns how many values of the type have been destroyed so far.
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
        return Detail::ComparisonOf<T>::areDifferent(*mine, *its);
    T a{};
    T b{};
    return !getValue(a) || !typed->getValue(b) || Detail::ComparisonOf<T>::areDifferent(a, b);
}

template<class T>
    requires(!std::convertible_to<const T&, std::string>)
bool VSlot::set(const StrongPtr<ValuePool>& pool, const T& value) const
{
    const StrongPtr<VValueBase> found = getLocalValue(pool);
    VTypedValueBase<T>* const typed = VTypedValueBase<T>::cast(found.get());
    if (!typed || !typed->setValue(Detail::independent(value)))
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
    if (!typed || !typed->getValue(value))
        return std::nullopt;
    if constexpr (!Detail::copiesPlainly<T>)
        value = VValueOperations<T>::copyOf(value);
    return std::optional<T>(std::move(value));
}

} // namespace Orla
