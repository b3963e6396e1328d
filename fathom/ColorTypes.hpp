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

    /// Sets all four components to 1, then reads as many as the text has; missing ones stay 1,
    /// even if the text is refused. Returns true if red and green could be read. Blanks may
    /// precede each number and surround the opening parenthesis. Ignores any text after the
    /// numbers; the closing parenthesis may be missing.
    static bool setValueFromText(Gyre::rgba_float_t& colour, const std::string& text);
};

} // namespace Orla
