#pragma once

#include <earth/Export.hpp>

#include <string>

namespace Earth {

/// Returns the name of the picture of step \p step: \p pattern with its last sequence
/// of "#" replaced by the number, padded with zeros to the length of the sequence.
///
/// \throw std::runtime_error if \p pattern has no "#", because each picture would
/// replace the previous one, or if \p step is not a whole number from 0 to 1e15.
EARTH_API std::string frameName(const std::string& pattern, double step);

} // namespace Earth
