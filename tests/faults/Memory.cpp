#include "Memory.hpp"

#include "support/ReplacedNew.hpp"

#include <atomic>
#include <new>

namespace Memory {

namespace {

std::atomic<long> theBlocks{0};
std::atomic<long> theAllocationsLeft{-1};
std::atomic<bool> theFailure{false};

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

void ReplacedNew::allocating()
{
    if (Memory::theAllocationsLeft >= 0 && Memory::theAllocationsLeft-- == 0) {
        Memory::theFailure = true;
        throw std::bad_alloc{};
    }
}

void ReplacedNew::allocated() noexcept
{
    ++Memory::theBlocks;
}

void ReplacedNew::released() noexcept
{
    --Memory::theBlocks;
}
