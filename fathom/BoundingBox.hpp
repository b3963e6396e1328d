#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

#include <gable/BoundingBox.hpp>

#include <string>

namespace Orla {

/// Text form of a shared box: `[{X,Y,Z};{X,Y,Z}]`, minimum and maximum; `[?;?]` for
/// no box.
template<>
struct FATHOM_API VValueTrait<StrongPtr<Gyre::BoundingBox, InterfaceBase>> {
    using Box = StrongPtr<Gyre::BoundingBox, InterfaceBase>;

    static std::string Text(const Box& box);

    /// Reads the minimum before the first ";" and the maximum behind the last one,
    /// and gives the box both and a new ball, in place: every holder of the same
    /// box sees it. Where there is no box one is made. Refuses, and changes
    /// nothing, if a corner cannot be read. "[?" in front or "?]" at the end empties
    /// the pointer; the box itself and its other holders stay as they are.
    static bool setValueFromText(Box& box, const std::string& text);

    static bool TypenameInitialized;
};

/// Boxes are different when their corners are; a copied value has a box of its own,
/// so that what one pool changes no other pool sees.
template<>
struct FATHOM_API VValueOperations<StrongPtr<Gyre::BoundingBox, InterfaceBase>> {
    using Box = StrongPtr<Gyre::BoundingBox, InterfaceBase>;

    static bool areDifferent(const Box& a, const Box& b);
    static Box copyOf(const Box& box);
};

/// Prints what the box says of itself, or that there is none, with \p name.
FATHOM_API void speak(const StrongPtr<Gyre::BoundingBox, InterfaceBase>& box, const char* name);

} // namespace Orla
