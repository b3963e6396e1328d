#pragma once

#include <tarn/network/NetworkFile.hpp>

#include <string>

namespace Tarn {

/// The network \p file as TOML, everything in one order and one spelling. Reading
/// it gives \p file again, places apart.
/// \pre All texts are UTF-8.
std::string networkText(const NetworkFile& file);

} // namespace Tarn
