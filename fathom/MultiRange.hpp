#pragma once

#include <fathom/Export.hpp>

#include <gable/MultiRange.hpp>

#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// Text form of a set of ranges: `[FIRST;LAST]`, only its first and last bounds, with six
/// decimals; empty if the set is empty.
template<>
struct FATHOM_API VValueTrait<Gyre::MultiRange> {
    static std::string Text(const Gyre::MultiRange& range);

    /// Reads the bounds in the text; see the constructor of `Gyre::MultiRange`. Accepts every
    /// text.
    static bool setValueFromText(Gyre::MultiRange& range, const std::string& text);

    static bool TypenameInitialized;
};

/// Prints one line with \p name. The wording is inverted on purpose: an empty set prints "not
/// empty MultiRange", any other set "empty MultiRange".
FATHOM_API void speak(const Gyre::MultiRange& range, const char* name);

} // namespace Orla
