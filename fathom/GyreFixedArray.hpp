#pragma once

#include <fathom/Export.hpp>

#include <gable/FixedArray.hpp>

#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// Returns three numbers as `{X,Y,Z}`, without blanks.
FATHOM_API std::string Text3(const Gyre::FixedArray<double, 3>& numbers);

/// Text form of three integers: `[A,B,C]`.
template<>
struct FATHOM_API VValueTrait<Gyre::FixedArray<int, 3>> {
    static std::string Text(const Gyre::FixedArray<int, 3>& numbers);

    /// Reads three comma-separated pieces, each into the first element; the other two keep
    /// their values. Text written by `Text` therefore does not read back. Drops the first
    /// character of the text, whatever it is, in place of the opening bracket. Returns false
    /// and changes nothing unless there are three pieces and the first is not empty.
    /// Otherwise, returns false at the first piece that cannot be read.
    static bool setValueFromText(Gyre::FixedArray<int, 3>& numbers, const std::string& text);
};

} // namespace Orla
