#pragma once

#include <gable/MultiRange.hpp>

#include <cstddef>
#include <vector>

namespace Rain {

/// The largest number of levels. More could not be told apart in a picture.
inline constexpr std::size_t mostLevels = 100;

/// Returns the bounds of \p range as levels.
/// \throw std::runtime_error if the range is empty or has too many bounds, or if they are not
/// finite and in increasing order.
std::vector<double> levelsOf(const Gyre::MultiRange& range);

} // namespace Rain
