#pragma once

#include <fathom/Export.hpp>

#include <trellis/VValueBase.hpp>

#include <gable/PhysicalSpace.hpp>

#include <loam/Numbers.hpp>

#include <cstddef>
#include <vector>

namespace Orla {

/// True for types whose values consist of numbers, so that descriptions can limit them. A type
/// with numbers among its `VValueComponents` can be added by a specialisation.
template<class T>
inline constexpr bool hasNumbers = Loam::Number<T>;

class Range;
template<>
inline constexpr bool hasNumbers<Range> = true;
template<>
inline constexpr bool hasNumbers<Gyre::PhysicalSpace::point> = true;
template<class T, std::size_t N>
inline constexpr bool hasNumbers<Gyre::FixedArray<T, N>> = Loam::Number<T>;
template<class T>
inline constexpr bool hasNumbers<StrongPtr<Loam::TypedChunk<T>, Loam::ChunkBase>> = Loam::Number<T>;

/// Returns the numbers of \p value: a number itself, the elements of an array or a point, and
/// the numbers among the components of any other value, such as the ends of a range.
FATHOM_API std::vector<double> numbersOf(VValueBase& value);

} // namespace Orla
