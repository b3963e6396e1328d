#pragma once

#include <fathom/Export.hpp>

#include <gable/MultiRange.hpp>

#include <trellis/VValueTrait.hpp>

#include <string>

namespace Orla {

/// Text form of a set of ranges: `[FIRST;LAST]` with six decimals, of its first and
/// its last bound alone; empty for no range.
template<>
struct FATHOM_API VValueTrait<Gyre::MultiRange> {
    static std::string Text(const Gyre::MultiRange& range);

    /// Takes whatever bounds the text has; see the constructor of
    /// `Gyre::MultiRange`. Accepts every text.
    static bool setValueFromText(Gyre::MultiRange& range, const std::string& text);

    static bool TypenameInitialized;
};

/// Prints one line with \p name. The words say the opposite of what is the case:
/// programs that read this output expect them so.
FATHOM_API void speak(const Gyre::MultiRange& range, const char* name);

} // namespace Orla
