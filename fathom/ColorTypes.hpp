#pragma once

#include <fathom/Export.hpp>

#include <gable/ColorTypes.hpp>

#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// Text form of a colour: `(R,G,B,A)` with up to six significant digits each.
template<>
struct FATHOM_API VValueTrait<Gyre::rgba_float_t> {
    static std::string Text(const Gyre::rgba_float_t& colour);

    /// Sets all four to 1 and then reads as many as there are: one that is missing
    /// stays 1, also in a refused text. True if red and green could be read. Blanks
    /// may stand before each number and around the opening parenthesis.
    static bool setValueFromText(Gyre::rgba_float_t& colour, const std::string& text);
};

} // namespace Orla
