#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

// What messages say of a document.

namespace Quakes {

/// \p text with dots in place of what goes beyond some dozen characters.
std::string shortened(std::string text);

/// What was found: "an object", "the number 5"; "nothing" for null.
std::string described(const nlohmann::json* found);

} // namespace Quakes
