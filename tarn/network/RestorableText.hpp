#pragma once

#include <trellis/VValueBase.hpp>

#include <loam/Result.hpp>

#include <optional>
#include <string>
#include <vector>

namespace Tarn {

/// The form in which a value is written to a file so that reading restores it.
struct RestorableText {
    /// The text that the value's type writes; nothing if that is not valid UTF-8.
    std::optional<std::string> text;

    /// Empty if reading the text restores the value; otherwise the texts to read instead, in
    /// order.
    std::vector<std::string> exact;
};

/// Returns the form of \p value, which was produced by reading \p texts in order into a copy
/// of \p given. Tries the text that the value's type writes, then as few of the last \p texts
/// as possible, until the value is restored as far as its type distinguishes values. Fails if
/// no text that a file can hold restores it or if its type throws.
Loam::Result<RestorableText> restorableText(const Orla::StrongPtr<Orla::VValueBase>& given,
                                            const Orla::StrongPtr<Orla::VValueBase>& value,
                                            const std::vector<std::string>& texts);

/// Returns true if reading \p texts in order into a copy of \p given produces \p value, as far
/// as its type distinguishes values. A value with NaN differs from all others.
bool givesValue(const Orla::StrongPtr<Orla::VValueBase>& given, const std::vector<std::string>& texts,
                const Orla::StrongPtr<Orla::VValueBase>& value);

} // namespace Tarn
