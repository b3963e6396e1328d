#pragma once

#include <tarn/network/Network.hpp>
#include <tarn/network/NetworkFile.hpp>
#include <tarn/text/Faults.hpp>

#include <string>
#include <vector>

namespace Tarn {

/// Creates the objects of \p file in file order, sets their inputs, applies \p overrides
/// (`OBJECT.SLOT=TEXT`), connects the objects and finishes them. Faults about unknown types
/// list \p missingLibraries.
///
/// If there are any \p faults, including earlier ones, no object is finished and all are
/// destroyed on return. An exception from a set-up function is a fault too, found last;
/// finished objects then stay in the registry. In both cases the network is empty.
Network buildNetwork(const NetworkFile& file, const std::vector<std::string>& overrides,
                     const std::vector<std::string>& missingLibraries, Faults& faults);

} // namespace Tarn
