#pragma once

#include <tarn/text/JsonText.hpp>
#include <tarn/types/TypeCatalogue.hpp>

#include <string>
#include <vector>

// Descriptions of inputs, outputs and object types, as text for people and as JSON.

namespace Tarn {

/// Returns what an input or output accepts, each fact as a few words: "in km", "from 0 to 10 km",
/// "only if mode is \"fast\"". The texts are as declared, not escaped.
std::vector<std::string> factsOf(const Orla::VSlotDescription& description);

/// Returns the sentence and the facts: "Half the side of each box; from 0 to 10 km." Empty if
/// \p description is null.
std::string summaryOf(const Orla::VSlotDescription* description);

/// Returns lines of a network file that create an object of the type and set the inputs that
/// users set first, to their initial texts. Ends with a newline.
std::string exampleNetworkLines(const ObjectTypeDescription& type);

/// Returns the description as a JSON object, or null. Infinite limits are null.
Json slotDescriptionJson(const Orla::VSlotDescription* description);
Json typeDescriptionJson(const std::optional<Orla::VTypeDescription::Parts>& description);

/// Returns true if lists for people show the slot.
bool isListed(const Orla::VSlotDescription* description);

} // namespace Tarn
