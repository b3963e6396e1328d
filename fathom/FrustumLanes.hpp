#pragma once

// Included by sources that are compiled for one processor each. Everything here
// is local to its source file, and nothing of the standard library is used: what
// is compiled for a wide processor must not end up where others run it.

#include <fathom/FrustumKernel.hpp>

namespace Orla {
namespace {

template<int Lanes>
struct Vectors {
    typedef double Numbers __attribute__((vector_size(Lanes * sizeof(double))));
    typedef double Unaligned __attribute__((vector_size(Lanes * sizeof(double)), aligned(sizeof(double)), may_alias));
    typedef std::int8_t Results __attribute__((vector_size(Lanes)));
};

// The smallest of zero and the distances of corners to the planes; the lanes are
// boxes. Each does what the query for one box does, with the same operations in
// the same order; the division by the length of the unit normal is left out,
// because it changes no sign while that length is close to 1. NaN is smaller than
// nothing.
template<int Lanes>
inline typename Vectors<Lanes>::Numbers worstDistance(const FrustumPlane* planes,
                                                      const double* const (FrustumPlane::*corners)[3],
                                                      std::size_t first)
{
    using Numbers = typename Vectors<Lanes>::Numbers;
    using Unaligned = typename Vectors<Lanes>::Unaligned;
    Numbers worst{};
#pragma GCC unroll 6
    for (int i = 0; i < 6; ++i) {
        const FrustumPlane& plane = planes[i];
        const double* const* const corner = plane.*corners;
        const Numbers x = *reinterpret_cast<const Unaligned*>(corner[0] + first) - plane.point[0];
        const Numbers y = *reinterpret_cast<const Unaligned*>(corner[1] + first) - plane.point[1];
        const Numbers z = *reinterpret_cast<const Unaligned*>(corner[2] + first) - plane.point[2];
        const Numbers distance = (y * plane.unit[1] + x * plane.unit[0]) + z * plane.unit[2];
        worst = distance < worst ? distance : worst;
    }
    return worst;
}

template<int Lanes>
inline std::size_t classifyLanes(const FrustumPlane* planes, std::size_t count, std::int8_t* results)
{
    using Numbers = typename Vectors<Lanes>::Numbers;
    using Results = typename Vectors<Lanes>::Results;
    std::size_t done = 0;
    for (; done + Lanes <= count; done += Lanes) {
        // A comparison gives -1 for true and 0 for false.
        const auto inside = ~(worstDistance<Lanes>(planes, &FrustumPlane::along, done) < Numbers{});
        Results found = __builtin_convertvector(inside, Results);
        std::uint64_t anyInside = 0;
        __builtin_memcpy(&anyInside, &found, sizeof found);
        // Most boxes of a large scene are out of sight and need no second look.
        if (anyInside != 0) {
            const auto straddling = worstDistance<Lanes>(planes, &FrustumPlane::against, done) < Numbers{};
            found = __builtin_convertvector(inside & (2 * straddling + 1), Results);
        }
        __builtin_memcpy(results + done, &found, sizeof found);
    }
    return done;
}

} // namespace
} // namespace Orla
