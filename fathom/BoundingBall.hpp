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

    /// Reads the radius after the last "@" and the center before the first one, or each from
    /// the whole text if there is no "@". Returns false and changes nothing if the radius
    /// cannot be read. Returns false but keeps the new radius if the center cannot be read.
    static bool setValueFromText(Gyre::BoundingBall& ball, const std::string& text);
};

} // namespace Orla
