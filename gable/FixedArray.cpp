#include <gable/FixedArray.hpp>

namespace Gyre {

template struct FixedArray<int, 2>;
template struct FixedArray<int, 3>;
template struct FixedArray<double, 2>;
template struct FixedArray<double, 3>;

static_assert(std::is_aggregate_v<FixedArray<double, 3>> && std::is_trivially_copyable_v<FixedArray<double, 3>>);
static_assert(sizeof(FixedArray<double, 3>) == 3 * sizeof(double), "arrays of arrays are plain memory");

} // namespace Gyre
