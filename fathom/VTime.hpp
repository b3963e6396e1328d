#pragma once

#include <fathom/Export.hpp>
#include <fathom/Range.hpp>

#include <concepts>
#include <string>

namespace Orla {

/// A point in time, with the interval of valid times and the length of one step. The unit is
/// the user's: seconds, years, a fraction of a run.
///
/// In steps, time runs from step 0 at `range.begin` to step `maxTsteps()`, and the step after
/// the last is the first. If `dt` is 0 or NaN, time is continuous and has no steps. Nothing is
/// enforced: the interval may be inverted, the step negative, and the time outside the
/// interval.
///
/// Text form: `TIME[BEGIN,END]@DT`, for example `5[0,10]@1`.
class FATHOM_API VTime {
public:
    /// Time 0 in the interval [0,0], without steps.
    VTime() : VTime{0.0} {}

    /// Time \p t in the interval [t,t], without steps.
    explicit VTime(double t);

    /// One step spans the whole interval.
    VTime(double t, double begin, double end);

    VTime(double t, double begin, double end, double dt, const std::string& info1, const std::string& info2,
          const std::string& info3);

    /// Time \p t with the interval, step and texts of \p like, moved into the interval: a time
    /// outside becomes the nearer end or, with \p cyclic, the opposite one. Does not copy the
    /// flags. In an inverted interval, a time before the begin becomes the end; NaN stays.
    VTime(double t, const VTime& like, bool cyclic);

    /// A flag is not the end of an interval: `VTime{t, x, true}` lacks the time to copy from.
    template<std::same_as<bool> Flag>
    VTime(double t, double begin, Flag end) = delete;

    VTime(const VTime&) = default;
    VTime& operator=(const VTime&) = default;
    ~VTime();

    /// Returns the number of the step nearest to \p t, not wrapped; halves are rounded up.
    /// Returns 0 without steps.
    double Tstep(double t) const noexcept;

    /// Returns the number of the last step, or 0 without steps.
    double maxTsteps() const noexcept;

    /// Returns the time of step \p n, wrapped into the valid steps. A fraction gives a time
    /// between steps. Returns `range.begin` without steps.
    double Tdiscrete(double n) const noexcept;

    /// Returns the time of the step nearest to \p t, wrapped into the valid steps: a time past
    /// the end comes back near the begin. Returns \p t without steps.
    double Tdiscretized(double t) const noexcept;

    /// Advances by one step, from the last step to the first. Without steps, the time becomes
    /// `range.begin`. Returns this object, already advanced, although it is the postfix form.
    VTime& operator++(int) noexcept;

    /// Goes back by one step, from the first step to the last; otherwise as `++`.
    VTime& operator--(int) noexcept;

    /// Compares all fields, including texts and flags.
    friend bool operator==(const VTime&, const VTime&) = default;

    double time;
    Range range;
    double dt; ///< length of one step; 0 for continuous time

    /// Free texts and flags that travel with the time; not used here.
    std::string info1;
    std::string info2;
    std::string info3;
    bool flagA = false;
    bool flagB = true;

private:
    bool isContinuous() const noexcept;
    double wrapped(double step) const noexcept;
    void stepBy(double steps) noexcept;
};

template<>
struct FATHOM_API VValueTrait<VTime> {
    /// Writes neither blanks, nor the texts, nor the flags.
    static std::string Text(const VTime& time);

    /// Returns false and changes nothing only if the text does not begin with a number. Each
    /// further number is read after its separator or, if that is missing, again from the place
    /// of the previous one: `5` gives a time, an interval and a step of 5. If the text ends at
    /// a separator, an end that is not given equals the begin, and a step that is not given is
    /// the length of the interval. A number that cannot be read keeps its value.
    static bool setValueFromText(VTime& time, const std::string& text);
};

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<VTime>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<VTime>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<VTime>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<VTime>;
extern template class FATHOM_EXTERN_TEMPLATE TypedSlot<VTime>;

} // namespace Orla
