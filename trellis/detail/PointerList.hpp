#pragma once

#include <algorithm>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace Orla::Detail {

/// A list of non-null pointers that takes the memory of one pointer as long as it holds at
/// most one: most parameters have one reader, and most containers have one frame.
template<class T>
class PointerList {
public:
    using value_type = T*;
    using const_iterator = T* const*;
    using iterator = const_iterator;

    PointerList() noexcept = default;
    PointerList(PointerList&& other) noexcept : m_content{std::exchange(other.m_content, nullptr)} {}
    PointerList& operator=(PointerList&& other) noexcept
    {
        std::swap(m_content, other.m_content);
        return *this;
    }
    ~PointerList() { delete many(); }

    std::size_t size() const noexcept
    {
        if (const Many* const list = many())
            return list->size();
        return m_content ? 1 : 0;
    }
    bool empty() const noexcept { return size() == 0; }

    const_iterator begin() const noexcept
    {
        const Many* const list = many();
        return list ? list->data() : &m_content;
    }
    const_iterator end() const noexcept { return begin() + size(); }
    T* operator[](std::size_t index) const noexcept { return begin()[index]; }
    T* back() const noexcept { return end()[-1]; }

    /// Reserves room for \p size pointers, so adding up to that many cannot fail. If it
    /// allocates, it at least doubles the capacity.
    /// \throw std::bad_alloc
    void reserve(std::size_t size)
    {
        if (size < 2)
            return;
        if (Many* const list = many()) {
            if (list->capacity() < size)
                list->reserve(std::max(2 * list->capacity(), size));
            return;
        }
        auto list = std::make_unique<Many>();
        list->reserve(size);
        if (m_content)
            list->push_back(m_content);
        m_content = reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(list.release()) | IsMany);
    }

    /// \throw std::bad_alloc; the list is unchanged.
    void push_back(T* pointer)
    {
        reserve(size() + 1);
        if (Many* const list = many())
            list->push_back(pointer);
        else
            m_content = pointer;
    }

    /// Removes the pointer at \p index and moves the last one into its place.
    void removeAt(std::size_t index) noexcept
    {
        if (Many* const list = many()) {
            (*list)[index] = list->back();
            list->pop_back();
        } else {
            m_content = nullptr;
        }
    }

private:
    using Many = std::vector<T*>;

    static constexpr std::uintptr_t IsMany = 1;
    static_assert(alignof(Many) > IsMany);

    Many* many() const noexcept
    {
        const auto content = reinterpret_cast<std::uintptr_t>(m_content);
        return (content & IsMany) != 0 ? reinterpret_cast<Many*>(content & ~IsMany) : nullptr;
    }

    T* m_content = nullptr; // the only pointer, or the list, marked with `IsMany`
};

} // namespace Orla::Detail
