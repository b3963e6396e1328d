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

/// Returns when the slot matters: `only if mode is "fast"`. Empty without a condition. Not escaped.
std::string conditionOf(const Orla::VSlotDescription& description);

/// Returns the sentence and the facts: "Half the side of each box; from 0 to 10 km." Empty if
/// \p description is null.
std::string summaryOf(const Orla::VSlotDescription* description);

/// Returns the name of the object in examples.
std::string exampleNameOf(const ObjectTypeDescription& type);

/// Returns lines of a network file that create an object of the type and set the inputs that
/// users set first, to their initial texts. Ends with a newline.
std::string exampleNetworkLines(const ObjectTypeDescription& type);

/// Returns a network file with those lines, and the library if the standard objects do not have the
/// type. Its column is the first output that lists for people show.
std::string exampleNetwork(const ObjectTypeDescription& type);

/// Returns the name under which networks load the library of the type.
std::string libraryOf(const ObjectTypeDescription& type);

/// Returns true if the input names a file to read, matters without a condition, and has no name yet.
bool needsFile(const ObjectTypeDescription::Input& input);

/// Returns the description as a JSON object, or null. Infinite limits are null.
Json slotDescriptionJson(const Orla::VSlotDescription* description);
Json typeDescriptionJson(const std::optional<Orla::VTypeDescription::Parts>& description);

/// Returns true if lists for people show the slot.
bool isListed(const Orla::VSlotDescription* description);

} // namespace Tarn
