#pragma once

#include <tarn/network/NetworkFile.hpp>

#include <functional>
#include <string>
#include <string_view>

namespace Tarn {

/// Parses the TOML text \p text. Anything that cannot be understood is left out and added to
/// \p faults; invalid TOML gives one fault and an empty network.
NetworkFile parseNetwork(std::string_view text, Faults& faults);

/// The same for a network that is written again. If \p isKnown returns false for the type of
/// an object, its content is kept unchecked; it is a fault only if nested too deeply.
NetworkFile parseNetwork(std::string_view text, Faults& faults,
                         const std::function<bool(const std::string& type)>& isKnown);

} // namespace Tarn
