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

/// An owning pointer to a reference-counted object; written `StrongPtr<T, Root>`
/// in interfaces.
///
/// Also holds the object's count block, so copying and destroying the pointer only
/// needs a declaration of \p T.
template<class T>
class Strong {
public:
    using element_type = T;

    constexpr Strong() noexcept = default;

    /// A null pointer; implicit, as for plain pointers.
    constexpr Strong(std::nullptr_t) noexcept {}

    /// Shares ownership of \p object. Once a strong pointer is made from the result of
    /// `new`, strong pointers control the object's lifetime.
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

    /// Converts a pointer to a derived class; implicit, as for plain pointers.
    template<class U>
        requires std::convertible_to<U*, T*>
    Strong(const Strong<U>& other) noexcept : m_block{other.m_block}, m_object{other.m_object}
    {
        retain();
    }

    template<class U>
        requires std::convertible_to<U*, T*>
    Strong(Strong<U>&& other) noexcept
        : m_block{std::exchange(other.m_block, nullptr)}, m_object{std::exchange(other.m_object, nullptr)}
    {
    }

    /// Checked downcast or cross-cast: null if the object is not a \p T.
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

    /// Locks \p weak: null if the object is no longer alive.
    template<class U>
        requires std::convertible_to<U*, T*>
    explicit Strong(const Weak<U>& weak) noexcept;

    /// Locks \p weak: null if the object is no longer alive or is not a \p T.
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
        assert(m_object && "an empty StrongPtr was dereferenced");
        return *m_object;
    }

    T* operator->() const noexcept
    {
        assert(m_object && "an empty StrongPtr was dereferenced");
        return m_object;
    }

    /// Returns the count block, or null for an empty pointer; for diagnostics.
    ReferenceBlock* referenceBlock() const noexcept { return m_block; }

    /// Two pointers are equal if they refer to the same object, through any of its bases.
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

/// The default root of `StrongPtr`: the counted root of the pointed-to type.
struct CountedRoot;

/// `StrongPtr<T, Root>` names the pointed-to type and the root that holds its count.
/// A type has one root, so \p T determines the root, even if \p T is only declared: all
/// spellings with the same \p T are the same type.
template<class T, class Root = CountedRoot>
using StrongPtr = Strong<T>;

/// Creates a counted object and returns a pointer that owns it.
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

// Defines the constructors from weak pointers.
#include <loam/WeakPtr.hpp>
