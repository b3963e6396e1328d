#pragma once

#include <earth/Export.hpp>

#include <fathom/VCamera.hpp>

namespace Earth {

/// Returns the camera moved around its focus by \p east degrees around the z axis and
/// \p north degrees towards the axis, at the same distance. It stays one degree away
/// from the axis, where the up direction is undefined. A camera at its focus does not
/// move.
EARTH_API Orla::VCamera orbited(const Orla::VCamera& camera, double east, double north);

/// Returns the camera with its distance to the focus multiplied by \p factor.
/// \pre \p factor is positive and finite.
EARTH_API Orla::VCamera zoomed(const Orla::VCamera& camera, double factor);

} // namespace Earth
