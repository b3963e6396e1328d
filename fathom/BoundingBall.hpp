#pragma once

#include <fathom/Export.hpp>

#include <gable/BoundingBall.hpp>

#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// Text form of a ball: `{X,Y,Z}@RADIUS`.
template<>
struct FATHOM_API VValueTrait<Gyre::BoundingBall> {
    static std::string Text(const Gyre::BoundingBall& ball);

    /// Reads the radius behind the last "@" and the center before the first one,
    /// each from the whole text if there is none. Refuses, and changes nothing,
    /// without a radius; without a center it refuses too, but the new radius stays.
    static bool setValueFromText(Gyre::BoundingBall& ball, const std::string& text);
};

} // namespace Orla
