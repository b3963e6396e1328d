#pragma once

#include <earth/Canvas.hpp>
#include <earth/GlobeProjection.hpp>
#include "PictureFrame.hpp"
#include <earth/Shapes.hpp>

#include <fathom/VCamera.hpp>

#include <vector>

namespace Quakes {

using namespace Earth;

/// Draws the Earth as a camera sees it, with the land and the events whose epicentres the
/// Earth does not hide. Returns the projection.
///
/// \throw std::invalid_argument for a camera that `GlobeProjection` refuses; the canvas
/// is then unchanged.
GlobeProjection drawGlobe(Canvas& canvas, const QuakePicture& picture, const std::vector<Polygon>& land,
                          const Orla::VCamera& camera);

} // namespace Quakes
