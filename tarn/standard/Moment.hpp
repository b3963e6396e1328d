#pragma once

#include <trellis/VValueTrait.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace Tarn {

/// A number of seconds, minutes, hours or days.
///
/// Text form: the number and the unit, for example `90 s` or `1.5 d`. A number without unit is in
/// seconds and keeps no unit.
struct Duration {
    double amount = 0;
    std::string_view unit = {}; ///< "s", "min", "h", "d" or empty

    double seconds() const noexcept;
    std::string text() const;

    /// Returns nothing unless \p text is a finite number with one of the units, and blanks at most.
    static std::optional<Duration> read(std::string_view text) noexcept;

    /// Returns \p seconds in the largest unit in which it is a whole number.
    static Duration inLargestUnit(double seconds) noexcept;

    friend bool operator==(const Duration&, const Duration&) = default;
};

/// An end of the clock's interval: nothing, an instant or a number of seconds.
///
/// Text form: empty, `2026-01-31T06:00:00Z`, or as `Duration`. Reads instants in ISO 8601 with four
/// digits of the year: a date, or a date and a time of day in hours and minutes, with seconds and up
/// to nine decimals of them if wanted. It ends with `Z`, with the offset from UTC such as `+01:00`,
/// or with neither, which means UTC. Days have 86,400 seconds; leap seconds are refused.
struct Moment {
    enum class Kind { None, Number, Instant };

    Kind kind = Kind::None;
    Duration number = {}; ///< of an instant, the seconds since 1970-01-01T00:00:00Z

    double seconds() const noexcept { return number.seconds(); }

    friend bool operator==(const Moment&, const Moment&) = default;
};

} // namespace Tarn

template<>
struct Orla::VValueTrait<Tarn::Moment> {
    static std::string Text(const Tarn::Moment& moment);

    /// Returns false and changes nothing if the text has none of the forms.
    static bool setValueFromText(Tarn::Moment& moment, const std::string& text);
};
