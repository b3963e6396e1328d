#pragma once

#include <cstddef>
#include <cstdint>

namespace Orla {

/// A plane of a frustum and where the corners that matter for it stand.
struct FrustumPlane {
    double point[3];
    double unit[3];
    const double* along[3];   ///< of each axis the corners furthest along the normal
    const double* against[3]; ///< and those furthest against it
};

/// Classifies boxes from the start of the arrays that the six planes point to.
/// Returns how many: all of them but less than fit side by side.
using FrustumKernel = std::size_t (*)(const FrustumPlane* planes, std::size_t count, std::int8_t* results);

/// The fastest one that this machine can run.
FrustumKernel bestFrustumKernel() noexcept;

// The same code, compiled for processors of different width.
std::size_t classifyFrustumBaseline(const FrustumPlane* planes, std::size_t count, std::int8_t* results);
std::size_t classifyFrustumAvx2(const FrustumPlane* planes, std::size_t count, std::int8_t* results);
std::size_t classifyFrustumAvx512(const FrustumPlane* planes, std::size_t count, std::int8_t* results);

} // namespace Orla
