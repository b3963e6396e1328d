#pragma once

// Included by sources that are each compiled for one kind of processor. Everything here is
// local to its source file and nothing of the standard library is used: code compiled for a
// wide processor must not be linked into code that other processors run.

#include <fathom/frustum/FrustumKernel.hpp>

namespace Orla {
namespace {

template<int Lanes>
struct Vectors {
    typedef double Numbers __attribute__((vector_size(Lanes * sizeof(double))));
    typedef double Unaligned __attribute__((vector_size(Lanes * sizeof(double)), aligned(sizeof(double)), may_alias));
    typedef std::int8_t Results __attribute__((vector_size(Lanes)));
};

// Returns the minimum of zero and the distances of corners to the planes; each lane is one
// box. Does the same operations in the same order as the query for one box, except for the
// division by the length of the unit normal: it changes no sign while that length is close to
// 1. NaN never counts as smaller.
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

inline void prefetch(const double* corner)
{
    constexpr std::size_t Ahead = 64;
    // A number, because a pointer may not be that far past the end of the array.
    const auto address = reinterpret_cast<std::uintptr_t>(corner) + Ahead * sizeof(double);
    __builtin_prefetch(reinterpret_cast<const void*>(address));
}

// Requests the corners of the boxes that are classified some iterations later. The processor does
// not look far enough ahead by itself, because the queries for a box are many instructions.
inline void prefetchCorners(const FrustumPlane& plane, std::size_t box)
{
    for (int axis = 0; axis < 3; ++axis) {
        // Between them, they have both corners of each axis.
        prefetch(plane.along[axis] + box);
        prefetch(plane.against[axis] + box);
    }
}

template<int Lanes>
inline std::size_t classifyLanes(const FrustumPlane* planes, std::size_t count, std::int8_t* results)
{
    using Numbers = typename Vectors<Lanes>::Numbers;
    using Results = typename Vectors<Lanes>::Results;
    constexpr std::size_t Width = Lanes;
    constexpr std::size_t Chunk = 256; // whose corners stay in the fastest cache
    constexpr std::size_t BoxesPerLine = 8;
    const std::size_t end = count - count % Width;
    std::size_t done = 0;
    while (done < end) {
        const std::size_t chunkEnd = end - done < Chunk ? end : done + Chunk;
        // Most boxes of a large scene are out of sight and need no second test. Those that do are
        // tested together, because a branch after the first test cannot be predicted.
        std::size_t inSight[Chunk / Width];
        std::size_t inSightCount = 0;
        for (; done < chunkEnd; done += Width) {
            if (done % BoxesPerLine == 0)
                prefetchCorners(planes[0], done);
            // A comparison yields -1 for true and 0 for false.
            const auto inside = ~(worstDistance<Lanes>(planes, &FrustumPlane::along, done) < Numbers{});
            const Results found = __builtin_convertvector(inside, Results);
            __builtin_memcpy(results + done, &found, sizeof found);
            std::uint64_t anyInside = 0;
            __builtin_memcpy(&anyInside, &found, sizeof found);
            inSight[inSightCount] = done;
            inSightCount += anyInside != 0;
        }
        for (std::size_t i = 0; i < inSightCount; ++i) {
            const auto straddling = worstDistance<Lanes>(planes, &FrustumPlane::against, inSight[i]) < Numbers{};
            Results found;
            __builtin_memcpy(&found, results + inSight[i], sizeof found);
            found &= __builtin_convertvector(2 * straddling + 1, Results);
            __builtin_memcpy(results + inSight[i], &found, sizeof found);
        }
    }
    return end;
}

} // namespace
} // namespace Orla
