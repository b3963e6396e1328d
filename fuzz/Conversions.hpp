#pragma once

#include <tarn/network/NetworkInputs.hpp>

#include <string>
#include <vector>

namespace Fuzz {

/// Converts the network in the file \p path with \p overrides. Ends the process unless
/// converting the result gives the same bytes, and every input the same value. Returns false
/// if the network has faults, whose places must be inside the file.
bool checkConversion(const std::string& path, const std::vector<std::string>& overrides);

} // namespace Fuzz
