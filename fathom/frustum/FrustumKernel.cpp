#include <fathom/frustum/FrustumKernel.hpp>

#if defined(__GNUC__)
#    include <fathom/frustum/FrustumLanes.hpp>
#endif

namespace Orla {

FrustumKernel bestFrustumKernel() noexcept
{
#if defined(FATHOM_WIDE_KERNELS)
    if (__builtin_cpu_supports("avx512f"))
        return classifyFrustumAvx512;
    if (__builtin_cpu_supports("avx2"))
        return classifyFrustumAvx2;
#endif
    return classifyFrustumBaseline;
}

// Every baseline processor has vectors of two doubles.
std::size_t classifyFrustumBaseline([[maybe_unused]] const FrustumPlane* planes, [[maybe_unused]] std::size_t count,
                                    [[maybe_unused]] std::int8_t* results)
{
#if defined(__GNUC__)
    return classifyLanes<2>(planes, count, results);
#else
    return 0; // the caller classifies box by box
#endif
}

} // namespace Orla
