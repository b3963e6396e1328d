#pragma once

#include "Catalogue.hpp"

#include <functional>
#include <optional>
#include <string>

namespace Quakes {

/// Is told now and then which fraction of a file was read, and returns whether
/// to go on.
using ReadingProgress = std::function<bool(double fraction)>;

/// Reads a GeoJSON file in which each feature is an event at a point, as
/// earthquake services publish them: `time` in milliseconds since 1970 UTC, the
/// third coordinate the depth in kilometres downwards.
///
/// `time`, `id`, longitude and latitude are required. The depth and the
/// properties `mag`, `magType`, `net`, `place`, `type` and `url` may be null or missing.
/// Members not named here are ignored. Memory is needed for the events alone,
/// not for the file.
///
/// Returns nothing if \p progress said not to go on.
/// \throw std::runtime_error with the name of the file, the event's index and id,
/// what was found and what was expected.
std::optional<Catalogue> readGeoJson(const std::string& file, const ReadingProgress& progress = {});

} // namespace Quakes
