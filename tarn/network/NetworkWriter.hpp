#pragma once

#include <tarn/network/NetworkFile.hpp>

#include <string>

namespace Tarn {

/// Returns the network \p file as TOML in canonical order and spelling. Reading it restores
/// \p file except for places.
/// \pre All texts are UTF-8.
std::string networkText(const NetworkFile& file);

} // namespace Tarn
