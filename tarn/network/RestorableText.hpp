#pragma once

#include <trellis/VValueBase.hpp>

#include <optional>
#include <string>
#include <vector>

namespace Tarn {

/// How a value is written to a file so that reading restores it.
struct RestorableText {
    /// What the value's type writes. Nothing if that is no UTF-8.
    std::optional<std::string> text;

    /// Empty if reading the text restores the value. Else the texts to read in its
    /// place, one after the other.
    std::vector<std::string> exact;
};

/// The form of \p value, which was made by reading \p texts one after the other
/// into a copy of \p given. Texts are tried until one restores the value as far as
/// its type tells values apart: what it writes first, then as few of the last
/// \p texts as will do. Nothing if no text that a file can hold restores it.
std::optional<RestorableText> restorableText(const Orla::StrongPtr<Orla::VValueBase>& given,
                                             const Orla::StrongPtr<Orla::VValueBase>& value,
                                             const std::vector<std::string>& texts);

} // namespace Tarn
