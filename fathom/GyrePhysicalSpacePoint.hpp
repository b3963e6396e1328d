#pragma once

#include <fathom/Export.hpp>

#include <gable/PhysicalSpace.hpp>

#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// Text form of a point: `{X,Y,Z}`.
template<>
struct FATHOM_API VValueTrait<Gyre::PhysicalSpace::point> {
    static std::string Text(const Gyre::PhysicalSpace::point& point);

    /// Reads the numbers behind the first "{", where there is one, and behind the
    /// commas; where a comma is missing the number before it is read again, so
    /// that `{5}` is three times 5. True if at least one could be read; the
    /// others keep what they were.
    static bool setValueFromText(Gyre::PhysicalSpace::point& point, const std::string& text);
};

} // namespace Orla
