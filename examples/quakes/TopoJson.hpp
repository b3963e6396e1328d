#pragma once

#include "Shapes.hpp"

#include <string>
#include <string_view>

namespace Quakes {

/// Reads the shapes of a topology in TopoJSON, in which shapes share arcs: with
/// a transform, that is of whole numbers and differences, or without one.
///
/// \p object names the member of `objects` to read; if it is empty, all of them
/// are read, in the order of their names. Geometries without a type (null) are
/// empty; coordinates beyond the second, `id`, `properties` and `bbox` are ignored.
///
/// \throw std::runtime_error with the name of the file, the path within it, what
/// was found and what was expected. Refused are, among others, arcs that do not
/// join, rings that are not closed, numbers of arcs that there are not, latitudes
/// beyond the poles and longitudes beyond a whole turn.
Shapes readTopoJson(const std::string& file, std::string_view object = {});

/// The same of a text; \p name stands for the file in messages.
Shapes shapesOfTopoJson(std::string_view text, const std::string& name, std::string_view object = {});

} // namespace Quakes
