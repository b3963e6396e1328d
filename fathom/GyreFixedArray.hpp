#pragma once

#include <fathom/Export.hpp>

#include <gable/FixedArray.hpp>

#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// Three numbers as `{X,Y,Z}`, without blanks.
FATHOM_API std::string Text3(const Gyre::FixedArray<double, 3>& numbers);

/// Text form of three whole numbers: `[A,B,C]`.
template<>
struct FATHOM_API VValueTrait<Gyre::FixedArray<int, 3>> {
    static std::string Text(const Gyre::FixedArray<int, 3>& numbers);

    /// Reads three pieces between commas, one after the other into the first
    /// element; the other two keep what they were. So what `Text` wrote does not
    /// read back: programs rely on the element that they get. The first character of
    /// the text is dropped, whatever it is, in place of the bracket that `Text` writes.
    /// Refuses, and changes nothing, unless there are three pieces, the first of them
    /// not empty; ends at the first piece that cannot be read.
    static bool setValueFromText(Gyre::FixedArray<int, 3>& numbers, const std::string& text);
};

} // namespace Orla
