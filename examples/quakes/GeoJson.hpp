#pragma once

#include "Catalogue.hpp"

#include <earth/JsonText.hpp>

#include <optional>
#include <string>

namespace Quakes {

/// Reads a GeoJSON file in which each feature is an event at a point, as earthquake
/// services publish it: `time` is in milliseconds since 1970 UTC, the third coordinate
/// is the depth in kilometres, positive downwards.
///
/// `time`, `id`, longitude and latitude are required. The depth and the
/// properties `mag`, `magType`, `net`, `place`, `type` and `url` may be null or missing.
/// Other members are ignored. Memory use depends on the events, not on the size of the
/// file. Files of more than 1 GiB are refused.
///
/// Returns nothing if \p progress returned false.
/// \throw std::runtime_error with the name of the file, the event's index and id,
/// what was found and what was expected.
std::optional<Catalogue> readGeoJson(const std::string& file, const Earth::ReadingProgress& progress = {});

} // namespace Quakes
