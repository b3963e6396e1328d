#pragma once

#include <earth/Export.hpp>
#include <earth/JsonText.hpp>
#include <earth/Shapes.hpp>

#include <string>
#include <string_view>

namespace Earth {

/// Reads the shapes of a TopoJSON topology, in which shapes share arcs. With a transform,
/// coordinates are whole numbers, and arcs store differences.
///
/// \p object names the member of `objects` to read; if it is empty, all members are read,
/// ordered by name. Geometries of type null are empty. Coordinates beyond the second,
/// `id`, `properties` and `bbox` are ignored.
///
/// \throw std::runtime_error with the name of the file, the path within it, what was found
/// and what was expected. Faults include arcs that do not join, rings that are not closed,
/// invalid arc indices, latitudes beyond the poles and longitudes beyond a whole turn. Shapes
/// that repeat arcs so often that they need far more memory than the file are refused, and so
/// are files of more than 256 MiB.
/// \throw ReadingStopped if \p progress returned false.
EARTH_API Shapes readTopoJson(const std::string& file, std::string_view object = {},
                              const ReadingProgress& progress = {});

/// As `readTopoJson`, from a text. \p name replaces the name of the file in messages.
EARTH_API Shapes shapesOfTopoJson(std::string_view text, const std::string& name, std::string_view object = {});

} // namespace Earth
