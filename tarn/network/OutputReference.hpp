#pragma once

#include <loam/Result.hpp>

#include <trellis/VObject.hpp>

#include <string>
#include <string_view>

namespace Tarn {

/// An output of an object, or a component of its value.
struct OutputReference {
    Orla::StrongPtr<Orla::VSlot> output;
    std::string member; ///< the component, or empty for the whole value

    /// Finds the output of \p object that \p text names: "OUTPUT" or "OUTPUT.MEMBER". Whether
    /// the component exists is not checked. \p description names the object in the reason.
    static Loam::Result<OutputReference> find(const Orla::VObject& object, const std::string& description,
                                              std::string_view text);

    /// Fails if the output's values do not have the component.
    Loam::Result<void> checkMember() const;

    /// Returns true if the value in \p pool is a result: the object neither failed nor waits
    /// for a failed one, or the output stays valid all the same.
    bool hasResult(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Fails with the reason if `hasResult` returns false.
    Loam::Result<void> checkResult(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Returns a copy of the value in \p pool. Fails if it is not a result or does not exist.
    Loam::Result<Orla::StrongPtr<Orla::VValueBase>> value(const Orla::StrongPtr<Orla::ValuePool>& pool) const;

    /// Returns the text form of the value in \p pool. Fails if the value is not a result, if it
    /// does not exist or if its type throws.
    Loam::Result<std::string> text(const Orla::StrongPtr<Orla::ValuePool>& pool) const;
};

} // namespace Tarn
