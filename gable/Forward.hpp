#pragma once

#include <cstddef>

// Forward declarations, for code that only passes references.
namespace Gyre {

class BoundingBall;
class BoundingBox;
class MultiRange;
struct PhysicalSpace;
struct rgba_float_t;
template<class T, std::size_t N>
struct FixedArray;

} // namespace Gyre
