#pragma once

#include <fathom/VCamera.hpp>

namespace Quakes {

/// The camera moved round the place that it looks at, which stays where it is: by
/// \p east degrees round the z axis and \p north degrees towards it. It keeps its
/// distance, and stays a degree away from the axis, above which it would not know
/// which way is up.
Orla::VCamera orbited(const Orla::VCamera& camera, double east, double north);

/// The camera with its distance to what it looks at multiplied by \p factor.
/// \pre \p factor is positive and finite.
Orla::VCamera zoomed(const Orla::VCamera& camera, double factor);

} // namespace Quakes
