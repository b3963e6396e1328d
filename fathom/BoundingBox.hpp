#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

#include <gable/BoundingBox.hpp>

#include <string>

namespace Orla {

/// Text form of a shared box: `[{X,Y,Z};{X,Y,Z}]`, minimum and maximum; `[?;?]` for null.
template<>
struct FATHOM_API VValueTrait<StrongPtr<Gyre::BoundingBox, InterfaceBase>> {
    using Box = StrongPtr<Gyre::BoundingBox, InterfaceBase>;

    static std::string Text(const Box& box);

    /// Reads the minimum before the first ";" and the maximum after the last one, both from the
    /// whole text if it has no ";". Sets both corners and a new ball in place, so every holder
    /// of the same box sees the change; creates a box if the pointer is null. Returns false and
    /// changes nothing if a corner cannot be read.
    ///
    /// Resets the pointer if the first piece is exactly "[?" or the last one exactly "?]"; the
    /// box and its other holders are unaffected. A piece with anything else in it, even a
    /// blank, is read as a corner.
    static bool setValueFromText(Box& box, const std::string& text);

    static bool TypenameInitialized;
};

/// Boxes differ if their corners differ. A copied value has its own box, so a change in one
/// pool does not affect other pools.
template<>
struct FATHOM_API VValueOperations<StrongPtr<Gyre::BoundingBox, InterfaceBase>> {
    using Box = StrongPtr<Gyre::BoundingBox, InterfaceBase>;

    static bool areDifferent(const Box& a, const Box& b);
    static Box copyOf(const Box& box);
};

/// Prints \p name and the box, or that it is empty if \p box is null.
FATHOM_API void speak(const StrongPtr<Gyre::BoundingBox, InterfaceBase>& box, const char* name);

} // namespace Orla
