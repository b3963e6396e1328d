#pragma once

#include <fathom/Export.hpp>
#include <fathom/VInputValueTrait.hpp>

#include <gable/PhysicalSpace.hpp>

#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// Text form of a bivector: `<X,Y,Z>`.
template<>
struct FATHOM_API VValueTrait<Gyre::PhysicalSpace::bivector> {
    static std::string Text(const Gyre::PhysicalSpace::bivector& bivector);

    /// Reads the numbers behind the first "<", where there is one, and behind the
    /// commas; where a comma is missing the number before it is read again, so
    /// that `<5>` is three times 5. True if at least one could be read; the
    /// others keep what they were.
    static bool setValueFromText(Gyre::PhysicalSpace::bivector& bivector, const std::string& text);
};

/// As an input: the same text, nothing to initialise.
template<>
struct FATHOM_API VInputValueTrait<Gyre::PhysicalSpace::bivector> {
    static bool setValueFromText(Gyre::PhysicalSpace::bivector& bivector, const std::string& text);
};

} // namespace Orla
