#pragma once

#include <cstddef>

// Forward declarations, for code that only passes references.
namespace Gyre {

template<class T, std::size_t N>
struct FixedArray;

} // namespace Gyre
