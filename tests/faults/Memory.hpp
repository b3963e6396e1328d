#pragma once

/// Counts the allocations of the program and makes one of them fail. Replaces operator new.
namespace Memory {

/// Number of allocated blocks.
long blocks() noexcept;

/// Makes an allocation throw std::bad_alloc: the next one if \p number is 0, the one after it
/// if 1. A negative number cancels this.
void failAllocation(long number) noexcept;

/// Returns true if an allocation has failed since the last call of `failAllocation`.
bool hasFailed() noexcept;

} // namespace Memory
