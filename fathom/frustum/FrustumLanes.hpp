#pragma once

// Included by sources that are each compiled for one kind of processor. Everything here is
// local to its source file and nothing of the standard library is used: code compiled for a
// wide processor must not be linked into code that other processors run.
//
// A group of boxes is first tested with its corners rounded to float: a register holds twice as
// many floats, and doubles from six unaligned arrays are loaded once instead of for each plane.
// Only a group with a box so close to a plane that rounding could change its result is tested
// again, exactly like a single box.

#include <fathom/frustum/FrustumKernel.hpp>

namespace Orla {
namespace {

template<typename Number, int Lanes>
struct Vectors {
    typedef Number Native __attribute__((vector_size(Lanes * sizeof(Number))));
    typedef Number Unaligned __attribute__((vector_size(Lanes * sizeof(Number)), aligned(sizeof(Number)), may_alias));
};

template<int Lanes>
using Doubles = typename Vectors<double, Lanes>::Native;
template<int Lanes>
using Floats = typename Vectors<float, Lanes>::Native;
template<int Lanes>
using Integers = typename Vectors<std::int32_t, Lanes>::Native;
template<int Lanes>
using Results = typename Vectors<std::int8_t, Lanes>::Native;

template<int Lanes>
inline Doubles<Lanes> load(const double* numbers)
{
    return *reinterpret_cast<const typename Vectors<double, Lanes>::Unaligned*>(numbers);
}

// Returns the minimum of zero and the distances of corners to the planes; each lane is one
// box. Does the same operations in the same order as the query for one box, except for the
// division by the length of the unit normal: it changes no sign while that length is close to
// 1. NaN never counts as smaller.
template<int Lanes>
inline Doubles<Lanes> worstDistance(const FrustumPlane* planes, const double* const (FrustumPlane::*corners)[3],
                                    std::size_t first)
{
    Doubles<Lanes> worst{};
    for (int i = 0; i < 6; ++i) {
        const FrustumPlane& plane = planes[i];
        const double* const* const corner = plane.*corners;
        const Doubles<Lanes> x = load<Lanes>(corner[0] + first) - plane.point[0];
        const Doubles<Lanes> y = load<Lanes>(corner[1] + first) - plane.point[1];
        const Doubles<Lanes> z = load<Lanes>(corner[2] + first) - plane.point[2];
        const Doubles<Lanes> distance = (y * plane.unit[1] + x * plane.unit[0]) + z * plane.unit[2];
        worst = distance < worst ? distance : worst;
    }
    return worst;
}

template<int Lanes>
inline void classifyExactly(const FrustumPlane* planes, std::size_t first, std::int8_t* results)
{
    // A comparison yields -1 for true and 0 for false.
    const auto inSight = ~(worstDistance<Lanes>(planes, &FrustumPlane::along, first) < 0);
    const auto straddling = worstDistance<Lanes>(planes, &FrustumPlane::against, first) < 0;
    const auto found = __builtin_convertvector(inSight & (2 * straddling + 1), Results<Lanes>);
    __builtin_memcpy(results + first, &found, sizeof found);
}

struct RoundedPlane {
    float normal[3]; // half the unit normal
    float offset;    // the product of that and the plane's point
    int along[3];    // which corners of a group to use, as for FrustumPlane
    int against[3];
};

// Planes and corners relative to an origin: zero, or a corner of a frustum far from zero.
struct RoundedFrustum {
    const double* corners[6];
    double origin[3];
    RoundedPlane planes[6];
    float size; // at least the sum of the magnitudes of the coordinates of each plane's point
};

inline double sumOfDifferences(const double* a, const double* b)
{
    double sum = 0;
    for (int axis = 0; axis < 3; ++axis) {
        const double difference = a[axis] - b[axis];
        sum += difference < 0 ? -difference : difference;
    }
    return sum;
}

// Returns true if the frustum is much smaller than its distance from zero. Only then is it worth
// a subtraction to round relative coordinates, which keep their precision.
inline bool isFarFromZero(const FrustumPlane* planes)
{
    constexpr double zero[3] = {};
    double extent = 0;
    for (int i = 1; i < 6; ++i)
        extent += sumOfDifferences(planes[i].point, planes[0].point);
    return sumOfDifferences(planes[0].point, zero) > 4 * extent;
}

inline RoundedFrustum roundedFrustum(const FrustumPlane* planes, bool farFromZero)
{
    RoundedFrustum frustum{};
    for (int axis = 0; axis < 3; ++axis) {
        frustum.corners[axis] = planes[0].along[axis];
        frustum.corners[3 + axis] = planes[0].against[axis];
        frustum.origin[axis] = farFromZero ? planes[0].point[axis] : 0;
    }
    double size = 0; // a sum, so that NaN remains
    for (int i = 0; i < 6; ++i) {
        const FrustumPlane& plane = planes[i];
        RoundedPlane& rounded = frustum.planes[i];
        double offset = 0;
        for (int axis = 0; axis < 3; ++axis) {
            const double half = plane.unit[axis] / 2;
            offset += half * (plane.point[axis] - frustum.origin[axis]);
            const bool asFirst = plane.along[axis] == planes[0].along[axis];
            rounded.normal[axis] = static_cast<float>(half);
            rounded.along[axis] = asFirst ? axis : 3 + axis;
            rounded.against[axis] = asFirst ? 3 + axis : axis;
        }
        rounded.offset = static_cast<float>(offset);
        size += sumOfDifferences(plane.point, frustum.origin);
    }
    frustum.size = static_cast<float>(size);
    return frustum;
}

template<int Lanes>
struct RoundedGroup {
    Floats<Lanes> corners[6];
    Floats<Lanes> error;         // the largest possible error of a distance
    Floats<Lanes> worstDistance; // along the normals
};

template<int Lanes>
inline Floats<Lanes> magnitude(Floats<Lanes> numbers)
{
    return reinterpret_cast<Floats<Lanes>>(reinterpret_cast<Integers<Lanes>>(numbers) & 0x7fffffff);
}

// GCC makes slow code of the conversion to bytes, except for the widest registers.
template<int Lanes>
inline bool anyTrue(Integers<Lanes> conditions)
{
    std::uint64_t words[2];
    if constexpr (Lanes == 16) {
        const auto bytes = __builtin_convertvector(conditions, Results<Lanes>);
        __builtin_memcpy(words, &bytes, sizeof words);
    } else if constexpr (Lanes == 8) {
        Integers<4> halves[2];
        __builtin_memcpy(halves, &conditions, sizeof halves);
        const Integers<4> either = halves[0] | halves[1];
        __builtin_memcpy(words, &either, sizeof words);
    } else {
        __builtin_memcpy(words, &conditions, sizeof words);
    }
    return (words[0] | words[1]) != 0;
}

template<int Lanes, bool FarFromZero>
inline void roundCorners(const RoundedFrustum& frustum, std::size_t first, RoundedGroup<Lanes>& group)
{
    constexpr int Half = Lanes / 2; // whose doubles fill a register
#pragma GCC unroll 6
    for (int i = 0; i < 6; ++i) {
#pragma GCC unroll 2
        for (int half = 0; half < 2; ++half) {
            Doubles<Half> numbers = load<Half>(frustum.corners[i] + first + half * Half);
            if constexpr (FarFromZero)
                numbers -= frustum.origin[i % 3];
            const auto rounded = __builtin_convertvector(numbers, Floats<Half>);
            __builtin_memcpy(reinterpret_cast<float*>(&group.corners[i]) + half * Half, &rounded, sizeof rounded);
        }
    }
}

// Returns half the minimum of the distances of corners to the planes.
template<int Lanes>
inline Floats<Lanes> worstDistance(const RoundedFrustum& frustum, const int (RoundedPlane::*corners)[3],
                                   const RoundedGroup<Lanes>& group)
{
    Floats<Lanes> worst{};
#pragma GCC unroll 6
    for (int i = 0; i < 6; ++i) {
        const RoundedPlane& plane = frustum.planes[i];
        const int* const corner = plane.*corners;
        const Floats<Lanes> distance =
            (group.corners[corner[0]] * plane.normal[0] - plane.offset)
            + (group.corners[corner[1]] * plane.normal[1] + group.corners[corner[2]] * plane.normal[2]);
        worst = i == 0 ? distance : distance < worst ? distance : worst;
    }
    return worst;
}

// Returns a bound on the difference between a rounded distance and half the distance that the
// query for one box computes, for all corners of a box and all planes.
//
// Let x be a corner, p a plane's point, u its unit normal and o the origin. In real numbers, half
// the distance is the sum of the six products u/2 (x - o) and -u/2 (p - o). Rounding to float
// multiplies each of them by at most six factors 1 + d, where |d| <= e = 2^-24: those of the
// coordinate, the normal, the product and two sums, and one for all the roundings of doubles,
// here and in the query for one box. So the error is at most 6e / (1 - 6e) times the sum of the
// magnitudes of the products (the standard model of floating-point arithmetic; Higham, Accuracy
// and Stability of Numerical Algorithms, chapter 3). No component of u exceeds 2, so the sum of
// the magnitudes of the coordinates is at least as large. The factor 8e leaves room for the
// roundings of the bound.
//
// The constant covers results below the normal floats: each is wrong by at most 2^-126, even if
// the processor flushes it to zero. If a coordinate is NaN, infinite or too large for a float, so
// is the bound, and every comparison with it is false. Otherwise no operation overflows, because
// half the normal makes no coordinate larger.
template<int Lanes>
inline Floats<Lanes> errorOfDistance(const RoundedFrustum& frustum, const RoundedGroup<Lanes>& group)
{
    const auto sizeOf = [&](int corner) { return magnitude<Lanes>(group.corners[corner]); };
    const Floats<Lanes> minimum = (sizeOf(0) + sizeOf(1)) + sizeOf(2);
    const Floats<Lanes> maximum = (sizeOf(3) + sizeOf(4)) + sizeOf(5);
    return ((minimum + maximum) + frustum.size) * (8 * 0x1p-24f) + 0x1p-120f;
}

// Most boxes of a large scene are out of sight and need no second test. Groups with others are
// collected and tested together, because a branch after the first test cannot be predicted.
template<int Lanes, bool FarFromZero>
inline void classifyGroups(const FrustumPlane* planes, std::size_t end, std::int8_t* results)
{
    // A local variable: the compiler must assume that writing results, which are characters,
    // changes what a reference refers to.
    const RoundedFrustum frustum = roundedFrustum(planes, FarFromZero);
    constexpr std::size_t Width = Lanes;
    constexpr std::size_t ChunkSize = 128; // stays in the fastest cache
    using Group = RoundedGroup<Lanes>;
    Group groups[ChunkSize / Width];
    const Group* inSight[ChunkSize / Width];
    for (std::size_t chunk = 0; chunk < end; chunk += ChunkSize) {
        const std::size_t groupCount = (end - chunk < ChunkSize ? end - chunk : ChunkSize) / Width;
        std::size_t inSightCount = 0;
        roundCorners<Lanes, FarFromZero>(frustum, chunk, groups[0]);
        for (Group* group = groups; group != groups + groupCount; ++group) {
            const std::size_t first = chunk + static_cast<std::size_t>(group - groups) * Width;
            // One group ahead: reading what was just written in halves would wait.
            if (group + 1 != groups + groupCount)
                roundCorners<Lanes, FarFromZero>(frustum, first + Width, group[1]);
            group->error = errorOfDistance(frustum, *group);
            group->worstDistance = worstDistance(frustum, &RoundedPlane::along, *group);
            const Results<Lanes> outside{};
            __builtin_memcpy(results + first, &outside, sizeof outside);
            inSight[inSightCount] = group;
            inSightCount += anyTrue<Lanes>(~(group->worstDistance < -group->error));
        }
        for (std::size_t i = 0; i < inSightCount; ++i) {
            const Group& group = *inSight[i];
            const std::size_t first = chunk + static_cast<std::size_t>(&group - groups) * Width;
            const Floats<Lanes> along = group.worstDistance;
            const Floats<Lanes> against = worstDistance(frustum, &RoundedPlane::against, group);
            const auto certain = (magnitude<Lanes>(along) > group.error) & (magnitude<Lanes>(against) > group.error);
            if (anyTrue<Lanes>(~certain)) [[unlikely]] {
                classifyExactly<Lanes / 2>(planes, first, results);
                classifyExactly<Lanes / 2>(planes, first + Width / 2, results);
                continue;
            }
            // A comparison yields -1 for true and 0 for false.
            const auto found = __builtin_convertvector((along > 0) & (2 * (against < 0) + 1), Results<Lanes>);
            __builtin_memcpy(results + first, &found, sizeof found);
        }
    }
}

// Lanes is the number of doubles in a register.
template<int Lanes>
inline std::size_t classifyLanes(const FrustumPlane* planes, std::size_t count, std::int8_t* results)
{
    constexpr int GroupSize = 2 * Lanes;
    std::size_t done = count - count % GroupSize;
    if (done != 0) {
        if (isFarFromZero(planes))
            classifyGroups<GroupSize, true>(planes, done, results);
        else
            classifyGroups<GroupSize, false>(planes, done, results);
    }
    for (; count - done >= Lanes; done += Lanes)
        classifyExactly<Lanes>(planes, done, results);
    return done;
}

} // namespace
} // namespace Orla
