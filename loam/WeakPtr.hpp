#pragma once

#include <loam/StrongPtr.hpp>

namespace Loam {

/// A pointer that does not keep its object alive and reads as null once the last
/// owner releases the object; written `WeakPtrImpl<T, Root>`.
///
/// \p T may be any base of the object, including mix-ins: the pointer also holds the
/// root's count block, and two pointers are equal if their blocks are.
template<class T>
class Weak {
public:
    using element_type = T;

    constexpr Weak() noexcept = default;

    /// A null pointer; implicit, as for plain pointers.
    constexpr Weak(std::nullptr_t) noexcept {}

    /// Implicit: any object can be watched.
    /// \pre \p object is null or not yet destroyed.
    Weak(T* object) noexcept : m_block{object ? &object->referenceBlock() : nullptr}, m_object{object} { retain(); }

    template<class U>
        requires std::convertible_to<U*, T*>
    Weak(const Strong<U>& strong) noexcept : m_block{strong.m_block}, m_object{strong.m_object}
    {
        retain();
    }

    Weak(const Weak& other) noexcept : m_block{other.m_block}, m_object{other.m_object} { retain(); }

    Weak(Weak&& other) noexcept
        : m_block{std::exchange(other.m_block, nullptr)}, m_object{std::exchange(other.m_object, nullptr)}
    {
    }

    /// Converts a pointer to a derived class. The conversion to a virtual base reads the
    /// object, so the object is locked first; if it is no longer alive, the result is empty.
    template<class U>
        requires(std::convertible_to<U*, T*> && !std::same_as<U, T>)
    Weak(const Weak<U>& other) noexcept
    {
        if (other.m_block && other.m_block->tryAddStrong()) {
            m_block = other.m_block;
            m_object = other.m_object;
            m_block->addWeak();
            m_block->releaseStrong();
        }
    }

    ~Weak()
    {
        if (m_block)
            m_block->releaseWeak();
    }

    Weak& operator=(const Weak& other) noexcept
    {
        Weak(other).swap(*this);
        return *this;
    }

    Weak& operator=(Weak&& other) noexcept
    {
        Weak(std::move(other)).swap(*this);
        return *this;
    }

    void swap(Weak& other) noexcept
    {
        std::swap(m_block, other.m_block);
        std::swap(m_object, other.m_object);
    }

    void reset() noexcept { Weak().swap(*this); }

    /// Returns a pointer that keeps the object alive, or null if it is no longer alive.
    Strong<T> lock() const noexcept { return Strong<T>(*this); }

    /// Returns the object if it is alive and the process has only one thread; otherwise null.
    /// For short code that calls nothing that could release the object.
    T* peek() const noexcept { return isSingleThreaded() && m_block && m_block->isAlive() ? m_object : nullptr; }

    /// Returns true for an empty pointer and if the object is no longer alive.
    bool expired() const noexcept { return !m_block || !m_block->isAlive(); }
    explicit operator bool() const noexcept { return !expired(); }

    /// Returns the count block, which outlives the object, or null for an empty pointer.
    ReferenceBlock* referenceBlock() const noexcept { return m_block; }

    template<class U>
    friend bool operator==(const Weak& a, const Weak<U>& b) noexcept
    {
        return a.m_block == b.referenceBlock();
    }

    template<class U>
    friend bool operator==(const Weak& a, const Strong<U>& b) noexcept
    {
        return a.m_block == b.referenceBlock();
    }

private:
    template<class>
    friend class Strong;
    template<class>
    friend class Weak;

    void retain() noexcept
    {
        if (m_block)
            m_block->addWeak();
    }

    ReferenceBlock* m_block = nullptr;
    T* m_object = nullptr;
};

template<class T, class Root = CountedRoot>
using WeakPtrImpl = Weak<T>;

template<class T, class Root = CountedRoot>
using WeakPtr = Weak<T>;

template<class T>
template<class U>
    requires std::convertible_to<U*, T*>
Strong<T>::Strong(const Weak<U>& weak) noexcept
{
    if (weak.m_block && weak.m_block->tryAddStrong()) {
        m_block = weak.m_block;
        m_object = weak.m_object;
    }
}

template<class T>
template<class U>
    requires(!std::convertible_to<U*, T*>)
Strong<T>::Strong(const Weak<U>& weak) noexcept : Strong(weak.lock())
{
}

} // namespace Loam

template<class T>
struct std::hash<Loam::Weak<T>> {
    std::size_t operator()(const Loam::Weak<T>& pointer) const noexcept
    {
        return std::hash<const void*>{}(pointer.referenceBlock());
    }
};
