#pragma once

#include <atomic>

#if defined(__has_include)
#    if __has_include(<sys/single_threaded.h>)
#        include <sys/single_threaded.h>
#        define LOAM_KNOWS_SINGLE_THREADED 1
#    endif
#endif

namespace Loam {

/// Returns true while the process has only one thread; counters then need no locked
/// instructions. Returns false on platforms that do not report it.
inline bool isSingleThreaded() noexcept
{
#if defined(LOAM_KNOWS_SINGLE_THREADED)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

/// Adds \p amount to a counter shared by threads and returns the old value.
template<class Number>
Number countUp(std::atomic<Number>& counter, Number amount = 1) noexcept
{
    if (!isSingleThreaded())
        return counter.fetch_add(amount, std::memory_order_relaxed);
    const Number old = counter.load(std::memory_order_relaxed);
    counter.store(old + amount, std::memory_order_relaxed);
    return old;
}

/// Subtracts \p amount from a counter shared by threads and returns the old value.
/// The thread that reaches 0 sees all writes made before the other decrements.
template<class Number>
Number countDown(std::atomic<Number>& counter, Number amount = 1) noexcept
{
    if (!isSingleThreaded())
        return counter.fetch_sub(amount, std::memory_order_acq_rel);
    const Number old = counter.load(std::memory_order_relaxed);
    counter.store(old - amount, std::memory_order_relaxed);
    return old;
}

} // namespace Loam
