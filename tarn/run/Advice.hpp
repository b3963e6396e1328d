#pragma once

#include <tarn/network/Network.hpp>
#include <tarn/network/NetworkFile.hpp>
#include <tarn/text/Faults.hpp>

#include <string>

namespace Tarn {

/// Returns what may be wrong in the current network although it has no faults, each with its
/// place in \p file: inputs without a description, once per type; inputs that are set or connected
/// although their condition is not met; outputs that neither an object nor a column reads, except
/// statuses; and objects from which no connections lead to an object that writes a file, to a
/// column or to a status. \p network was built from \p file, which messages call \p title.
Faults adviceOn(const Network& network, const NetworkFile& file, const std::string& title);

} // namespace Tarn
