#include <loam/Ageable.hpp>

namespace Loam {

namespace {

// Large enough that the clock is rarely accessed, small enough that it never overflows.
constexpr Ageable::Age TicksInAdvance = 4096;

struct Reserve {
    unsigned scopes;
    Ageable::Age last; // the last tick taken
    Ageable::Age end;  // the last tick reserved; 0 before the first reservation
};

#if defined(__GNUC__) && !defined(_WIN32)
__attribute__((tls_model("initial-exec")))
#endif
thread_local Reserve t_reserve{};

} // namespace

std::atomic<Ageable::Age> Ageable::GlobalTime{0};

Ageable::Age Ageable::nowAmongThreads() noexcept
{
    return t_reserve.end != 0 ? t_reserve.last : GlobalTime.load(std::memory_order_relaxed);
}

Ageable::Age Ageable::nextAmongThreads() noexcept
{
    Reserve& reserve = t_reserve;
    if (reserve.scopes == 0)
        return GlobalTime.fetch_add(1, std::memory_order_relaxed) + 1;
    if (reserve.last == reserve.end) {
        reserve.last = GlobalTime.fetch_add(TicksInAdvance, std::memory_order_relaxed);
        reserve.end = reserve.last + TicksInAdvance;
    }
    return ++reserve.last;
}

// An inner scope reserves new ticks, because it may read values that other threads have
// touched since the outer scope began.
Ageable::Ticks::Ticks() noexcept
{
    ++t_reserve.scopes;
    t_reserve.last = 0;
    t_reserve.end = 0;
}

Ageable::Ticks::~Ticks()
{
    --t_reserve.scopes;
    t_reserve.last = 0;
    t_reserve.end = 0;
}

} // namespace Loam
