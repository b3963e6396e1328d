#pragma once

#include <string>

namespace Quakes {

/// The name of the picture of step \p step: \p pattern with its last row of "#"
/// replaced by the number, filled up with zeros to the length of the row.
///
/// \throw std::runtime_error if there is no "#", because then each picture would
/// replace the one before, and for a step that is no whole number from 0 on.
std::string frameName(const std::string& pattern, double step);

} // namespace Quakes
