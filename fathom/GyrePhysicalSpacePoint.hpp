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

    /// Reads the first number after the first "{", if any, and the others after the commas. If
    /// a comma is missing, the previous number is read again: `{5}` gives 5 three times.
    /// Returns true if at least one number could be read; the others keep their values.
    static bool setValueFromText(Gyre::PhysicalSpace::point& point, const std::string& text);
};

} // namespace Orla
