#pragma once

#include <earth/Export.hpp>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace Earth {

/// Returns \p text, or its first 60 bytes and "..." if it is longer.
EARTH_API std::string shortened(std::string text);

/// Describes a JSON value for a message: "an object", "the number 5"; "nothing" for a null
/// pointer.
EARTH_API std::string described(const nlohmann::json* found);

} // namespace Earth
