#include "Memory.hpp"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

// The replacements pair like the standard functions, but the compiler cannot see it.
#if defined(__GNUC__) && !defined(__clang__)
#    pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

namespace Memory {

namespace {

std::atomic<long> theBlocks{0};
std::atomic<long> theAllocationsLeft{-1};
std::atomic<bool> theFailure{false};

void* allocate(std::size_t size, std::size_t alignment)
{
    if (theAllocationsLeft >= 0 && theAllocationsLeft-- == 0) {
        theFailure = true;
        throw std::bad_alloc{};
    }
    const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
    void* const memory = std::aligned_alloc(alignment, rounded > 0 ? rounded : alignment);
    if (!memory)
        throw std::bad_alloc{};
    ++theBlocks;
    return memory;
}

void release(void* memory) noexcept
{
    if (memory)
        --theBlocks;
    std::free(memory);
}

} // namespace

long blocks() noexcept
{
    return theBlocks;
}

void failAllocation(long number) noexcept
{
    theFailure = false;
    theAllocationsLeft = number;
}

bool hasFailed() noexcept
{
    return theFailure;
}

} // namespace Memory

void* operator new(std::size_t size)
{
    return Memory::allocate(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return Memory::allocate(size, static_cast<std::size_t>(alignment));
}

void operator delete(void* memory) noexcept
{
    Memory::release(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    Memory::release(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    Memory::release(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    Memory::release(memory);
}
