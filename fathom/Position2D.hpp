#pragma once

#include <fathom/Export.hpp>
#include <fathom/VInputValueTrait.hpp>

#include <gable/FixedArray.hpp>

#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// Text form of a pair of numbers: `AxB`, like a size.
template<>
struct FATHOM_API VValueTrait<Gyre::FixedArray<double, 2>> {
    static std::string Text(const Gyre::FixedArray<double, 2>& pair);

    /// Refuses every text: pairs are only displayed.
    static bool setValueFromText(Gyre::FixedArray<double, 2>& pair, const std::string& text);
};

template<>
struct FATHOM_API VInputValueTrait<Gyre::FixedArray<double, 2>> {
    /// Sets both numbers to 0.
    static void init(Gyre::FixedArray<double, 2>& pair);

    /// Refuses every text.
    static bool setValueFromText(Gyre::FixedArray<double, 2>& pair, const std::string& text);
};

} // namespace Orla
