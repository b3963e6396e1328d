#pragma once

#include <tarn/standard/Moment.hpp>

#include <trellis/VValueTrait.hpp>

#include <string>

namespace Tarn {

/// The length of a step of the clock, or nothing.
///
/// Text form: empty, or as `Duration`. Reads ISO 8601 durations as well, of weeks (`P2W`) or of
/// days, hours, minutes and seconds (`P1DT12H`), and writes these in their largest whole unit. The
/// last number may have decimals. Months and years, whose length varies, are refused, and so are
/// lengths of 0 and less.
struct TimeStep {
    Duration length = {}; ///< 0 for nothing

    bool isGiven() const noexcept { return length.amount > 0; }

    friend bool operator==(const TimeStep&, const TimeStep&) = default;
};

} // namespace Tarn

template<>
struct Orla::VValueTrait<Tarn::TimeStep> {
    static std::string Text(const Tarn::TimeStep& step);

    /// Returns false and changes nothing if the text has none of the forms.
    static bool setValueFromText(Tarn::TimeStep& step, const std::string& text);
};
