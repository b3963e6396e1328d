#pragma once

#include <loam/ReferenceBase.hpp>

#include <cassert>
#include <concepts>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

namespace Loam {

template<class T>
class Weak;

/// Owning pointer to a reference-counted object; spelled `StrongPtr<T, Root>`
/// in interfaces.
///
/// Holds the object's count block beside the pointer, so that copying and
/// destroying it needs no more of \p T than its declaration.
template<class T>
class Strong {
public:
    using element_type = T;

    constexpr Strong() noexcept = default;

    /// "Nothing"; implicit, because null is a value of every pointer.
    constexpr Strong(std::nullptr_t) noexcept {}

    /// Takes part in owning \p object. The first strong pointer that is made
    /// from what `new` gave decides from then on how long the object lives.
    /// \pre \p object is null or alive.
    explicit Strong(T* object) noexcept : m_block{object ? &object->referenceBlock() : nullptr}, m_object{object}
    {
        if (m_block)
            m_block->adopt();
    }

    Strong(const Strong& other) noexcept : m_block{other.m_block}, m_object{other.m_object} { retain(); }

    Strong(Strong&& other) noexcept
        : m_block{std::exchange(other.m_block, nullptr)}, m_object{std::exchange(other.m_object, nullptr)}
    {
    }

    /// A pointer to a derived class is a pointer to its base; implicit, as it
    /// is for plain pointers.
    template<class U>
        requires std::convertible_to<U*, T*> Strong(const Strong<U>& other)
    noexcept : m_block{other.m_block}, m_object{other.m_object} { retain(); }

    template<class U>
        requires std::convertible_to<U*, T*> Strong(Strong<U>&& other)
    noexcept : m_block{std::exchange(other.m_block, nullptr)}, m_object{std::exchange(other.m_object, nullptr)} {}

    /// Checked cast down or across: null if the object is no \p T.
    template<class U>
        requires(!std::convertible_to<U*, T*>)
    explicit Strong(const Strong<U>& other) noexcept
        : m_block{other.m_block}, m_object{dynamic_cast<T*>(other.m_object)}
    {
        if (m_object)
            retain();
        else
            m_block = nullptr;
    }

    /// The object while it is alive, else null.
    template<class U>
        requires std::convertible_to<U*, T*>
    explicit Strong(const Weak<U>& weak) noexcept;

    /// The object while it is alive and a \p T, else null.
    template<class U>
        requires(!std::convertible_to<U*, T*>)
    explicit Strong(const Weak<U>& weak) noexcept;

    ~Strong()
    {
        if (m_block)
            m_block->releaseStrong();
    }

    Strong& operator=(const Strong& other) noexcept
    {
        Strong(other).swap(*this);
        return *this;
    }

    Strong& operator=(Strong&& other) noexcept
    {
        Strong(std::move(other)).swap(*this);
        return *this;
    }

    void swap(Strong& other) noexcept
    {
        std::swap(m_block, other.m_block);
        std::swap(m_object, other.m_object);
    }

    void reset() noexcept { Strong().swap(*this); }

    T* get() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

    T& operator*() const noexcept
    {
        assert(m_object && "an empty StrongPtr was used");
        return *m_object;
    }

    T* operator->() const noexcept
    {
        assert(m_object && "an empty StrongPtr was used");
        return m_object;
    }

    /// The count block, null for an empty pointer; for diagnostics.
    ReferenceBlock* referenceBlock() const noexcept { return m_block; }

    /// Two pointers are equal when they refer to the same object, through
    /// whatever base they see it.
    template<class U>
    friend bool operator==(const Strong& a, const Strong<U>& b) noexcept
    {
        return a.m_block == b.referenceBlock();
    }

    friend bool operator==(const Strong& a, std::nullptr_t) noexcept { return a.m_block == nullptr; }

private:
    template<class>
    friend class Strong;
    template<class>
    friend class Weak;

    void retain() noexcept
    {
        if (m_block)
            m_block->addStrong();
    }

    ReferenceBlock* m_block = nullptr;
    T* m_object = nullptr;
};

/// Stands for "the counted root of the type", whatever that is.
struct CountedRoot;

/// `StrongPtr<T, Root>` names the pointed-to type and the root that carries its
/// count. A type has one root, so the root follows from the type, also from one
/// that is only declared: all spellings with the same \p T are one type.
template<class T, class Root = CountedRoot>
using StrongPtr = Strong<T>;

/// Makes a counted object that belongs to the pointer returned.
template<class T, class... Arguments>
StrongPtr<T> makeStrong(Arguments&&... arguments)
{
    return StrongPtr<T>(new T(std::forward<Arguments>(arguments)...));
}

} // namespace Loam

template<class T>
struct std::hash<Loam::Strong<T>> {
    std::size_t operator()(const Loam::Strong<T>& pointer) const noexcept
    {
        return std::hash<const void*>{}(pointer.referenceBlock());
    }
};

// The constructors from weak pointers are defined there.
#include <loam/WeakPtr.hpp>
