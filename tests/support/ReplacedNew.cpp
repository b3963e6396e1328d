#include "ReplacedNew.hpp"

#include <cstddef>
#include <cstdlib>
#include <new>

// The replacements pair like the standard functions, but the compiler cannot see it.
#if defined(__GNUC__) && !defined(__clang__)
#    pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

namespace ReplacedNew {

namespace {

void* allocate(std::size_t size, std::size_t alignment)
{
    allocating();
    const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
    void* const memory = std::aligned_alloc(alignment, rounded > 0 ? rounded : alignment);
    if (!memory)
        throw std::bad_alloc{};
    allocated();
    return memory;
}

void release(void* memory) noexcept
{
    if (memory)
        released();
    std::free(memory);
}

} // namespace

} // namespace ReplacedNew

void* operator new(std::size_t size)
{
    return ReplacedNew::allocate(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return ReplacedNew::allocate(size, static_cast<std::size_t>(alignment));
}

void operator delete(void* memory) noexcept
{
    ReplacedNew::release(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    ReplacedNew::release(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    ReplacedNew::release(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    ReplacedNew::release(memory);
}
