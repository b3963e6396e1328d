#pragma once

#include <cstddef>
#include <cstdint>

namespace Orla {

/// A plane of a frustum, and the corner coordinates to test against it.
struct FrustumPlane {
    double point[3];
    double unit[3];           ///< the normal, of a length between 0.5 and 2
    const double* along[3];   ///< per axis, the corners furthest along the normal
    const double* against[3]; ///< per axis, the corners furthest against it
};

/// Classifies boxes from the start of the arrays that the six planes point to. Returns how
/// many; the caller classifies the rest, normally fewer than fill a vector.
using FrustumKernel = std::size_t (*)(const FrustumPlane* planes, std::size_t count, std::int8_t* results);

/// Returns the fastest kernel that this machine can run.
FrustumKernel bestFrustumKernel() noexcept;

// The same code, compiled for several vector widths.
std::size_t classifyFrustumBaseline(const FrustumPlane* planes, std::size_t count, std::int8_t* results);
std::size_t classifyFrustumAvx2(const FrustumPlane* planes, std::size_t count, std::int8_t* results);
std::size_t classifyFrustumAvx512(const FrustumPlane* planes, std::size_t count, std::int8_t* results);

} // namespace Orla
