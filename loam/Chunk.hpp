#pragma once

#include <loam/AtomicCount.hpp>
#include <loam/Export.hpp>
#include <loam/StrongPtr.hpp>

#include <atomic>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <new>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace Loam {

/// A reference-counted array of values in contiguous memory.
class LOAM_API ChunkBase : public ReferenceBase<ChunkBase> {
public:
    /// Bytes of element memory currently held by all chunks of the process. Exact, even
    /// after an allocation throws.
    static std::atomic<std::size_t> TotalMemsize;

    /// Alignment of the first element in bytes; sufficient for every vector unit.
    static constexpr std::size_t Alignment = 64;

    ~ChunkBase() override;

    virtual const std::type_info& elementType() const noexcept = 0;
    virtual std::size_t elementSize() const noexcept = 0;
    virtual std::size_t size() const noexcept = 0;

    /// Returns the elements, for libraries that take plain memory. The pointer is valid
    /// while the chunk exists and keeps its size; it may be null for an empty chunk.
    virtual void* memory() noexcept = 0;
    virtual const void* memory() const noexcept = 0;

protected:
    ChunkBase() = default;
};

/// Allocates aligned element memory and counts it in `ChunkBase::TotalMemsize`.
template<class T>
class ChunkAllocator {
public:
    using value_type = T;
    using is_always_equal = std::true_type;

    ChunkAllocator() noexcept = default;
    template<class U>
    ChunkAllocator(const ChunkAllocator<U>&) noexcept // implicit: containers rebind their allocators
    {
    }

    /// \throw std::bad_array_new_length if the elements exceed the address space,
    ///        std::bad_alloc if memory is exhausted; the total is then unchanged.
    T* allocate(std::size_t count)
    {
        if (count > std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T))
            throw std::bad_array_new_length{};
        void* memory = ::operator new(count * sizeof(T), alignment());
        countUp(ChunkBase::TotalMemsize, count * sizeof(T));
        return static_cast<T*>(memory);
    }

    void deallocate(T* memory, std::size_t count) noexcept
    {
        countDown(ChunkBase::TotalMemsize, count * sizeof(T));
        ::operator delete(memory, alignment());
    }

    friend bool operator==(const ChunkAllocator&, const ChunkAllocator&) noexcept { return true; }

private:
    static constexpr std::align_val_t alignment() noexcept
    {
        return std::align_val_t{alignof(T) > ChunkBase::Alignment ? alignof(T) : ChunkBase::Alignment};
    }
};

template<class T>
class TypedChunk;

/// A chunk whose element type is known.
template<class T>
class TypedChunkBase : public ChunkBase {
public:
    const std::type_info& elementType() const noexcept override { return typeid(T); }
    std::size_t elementSize() const noexcept override { return sizeof(T); }

    /// Creates a chunk of \p size value-initialised elements. Without \p initialise,
    /// elements of arithmetic types are uninitialised, for callers that overwrite all
    /// of them.
    /// \throw std::bad_alloc or a class derived from it.
    static StrongPtr<TypedChunk<T>, ChunkBase> createNewChunk(std::size_t size, bool initialise = true);

    /// Creates a chunk of the elements in braces.
    /// \throw std::bad_alloc or a class derived from it.
    static StrongPtr<TypedChunk<T>, ChunkBase> createNewChunk(std::initializer_list<T> elements);
};

/// A chunk that owns its elements in a vector.
template<class T>
class TypedChunk : public TypedChunkBase<T> {
public:
    static_assert(!std::is_same_v<T, bool>, "std::vector<bool> has no contiguous elements; use char");

    /// Like `ChunkAllocator`, but default-initialises elements that are constructed
    /// without a value.
    class Allocator : public ChunkAllocator<T> {
    public:
        using value_type = T;
        template<class U>
        struct rebind {
            using other = std::conditional_t<std::is_same_v<U, T>, Allocator, ChunkAllocator<U>>;
        };

        Allocator() noexcept = default;
        template<class U>
        Allocator(const ChunkAllocator<U>& other) noexcept : ChunkAllocator<T>{other} // implicit: rebinding
        {
        }

        template<class U, class... Arguments>
        void construct(U* place, Arguments&&... arguments)
        {
            if constexpr (sizeof...(Arguments) == 0)
                ::new (static_cast<void*>(place)) U;
            else
                ::new (static_cast<void*>(place)) U(std::forward<Arguments>(arguments)...);
        }
    };
    using Vector = std::vector<T, Allocator>;

    TypedChunk() = default;

    /// Creates \p size value-initialised elements.
    explicit TypedChunk(std::size_t size) : TypedChunk(size, T{}) {}

    /// Creates \p size copies of \p value.
    /// \throw std::bad_alloc or a class derived from it.
    TypedChunk(std::size_t size, const T& value)
    {
        checkSize(size);
        m_elements.assign(size, value);
    }

    /// Creates the elements in braces: `TypedChunk<int>{3}` has one element,
    /// `TypedChunk<int>(3)` has three.
    /// \throw std::bad_alloc or a class derived from it.
    TypedChunk(std::initializer_list<T> elements) : m_elements(elements) {}

    /// Returns the vector of elements, which may grow and shrink.
    Vector& base_vector() noexcept { return m_elements; }
    const Vector& base_vector() const noexcept { return m_elements; }

    std::size_t size() const noexcept override { return m_elements.size(); }
    void* memory() noexcept override { return m_elements.data(); }
    const void* memory() const noexcept override { return m_elements.data(); }

    T* data() noexcept { return m_elements.data(); }
    const T* data() const noexcept { return m_elements.data(); }
    T& operator[](std::size_t index) noexcept { return m_elements[index]; }
    const T& operator[](std::size_t index) const noexcept { return m_elements[index]; }
    auto begin() noexcept { return m_elements.begin(); }
    auto end() noexcept { return m_elements.end(); }
    auto begin() const noexcept { return m_elements.begin(); }
    auto end() const noexcept { return m_elements.end(); }

private:
    friend class TypedChunkBase<T>;

    // std::vector would throw std::length_error, which is not a std::bad_alloc.
    void checkSize(std::size_t size) const
    {
        if (size > m_elements.max_size())
            throw std::bad_array_new_length{};
    }

    Vector m_elements;
};

/// The array that a value creates when it is exported.
template<class T>
class Chunk : public TypedChunk<T> {
public:
    using TypedChunk<T>::TypedChunk;
};

template<class T>
StrongPtr<TypedChunk<T>, ChunkBase> TypedChunkBase<T>::createNewChunk(std::size_t size, bool initialise)
{
    if (initialise)
        return makeStrong<TypedChunk<T>>(size);
    auto chunk = makeStrong<TypedChunk<T>>();
    chunk->checkSize(size);
    chunk->base_vector().resize(size);
    return chunk;
}

template<class T>
StrongPtr<TypedChunk<T>, ChunkBase> TypedChunkBase<T>::createNewChunk(std::initializer_list<T> elements)
{
    return makeStrong<TypedChunk<T>>(elements);
}

extern template class LOAM_EXTERN_TEMPLATE TypedChunk<double>;
extern template class LOAM_EXTERN_TEMPLATE TypedChunk<float>;
extern template class LOAM_EXTERN_TEMPLATE TypedChunk<short>;
extern template class LOAM_EXTERN_TEMPLATE TypedChunk<int>;
extern template class LOAM_EXTERN_TEMPLATE TypedChunk<long long>;

} // namespace Loam
