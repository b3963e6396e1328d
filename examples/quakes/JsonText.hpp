#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace Quakes {

/// Returns \p text, or its first 60 bytes and "..." if it is longer.
std::string shortened(std::string text);

/// Describes a JSON value for a message: "an object", "the number 5"; "nothing" for a null
/// pointer.
std::string described(const nlohmann::json* found);

} // namespace Quakes
