#pragma once

#include <fathom/Export.hpp>
#include <fathom/Range.hpp>

#include <string>

namespace Orla {

/// A point in time with the interval of valid times and the length of one step.
/// The unit is the user's: seconds, years, a fraction of a run.
///
/// Seen as steps, times run from step 0 at `range.begin` to step `maxTsteps()`,
/// and stepping on from the last leads back to the first. With `dt` 0, or NaN,
/// time is continuous and has no steps. Nothing is enforced: the interval may be
/// inverted, the step negative, and the time outside the interval.
///
/// Text form: `TIME[BEGIN,END]@DT`, for example `5[0,10]@1`.
class FATHOM_API VTime {
public:
    /// Time 0 in the interval [0,0], without steps.
    VTime() : VTime{0.0} {}

    /// Time \p t in the interval [t,t], without steps.
    explicit VTime(double t);

    /// One single step spans the whole interval.
    VTime(double t, double begin, double end);

    VTime(double t, double begin, double end, double dt, const std::string& info1, const std::string& info2,
          const std::string& info3);

    /// Time \p t with the interval, the step and the texts of \p like, brought
    /// into the interval: a time outside becomes the nearer end or, with
    /// \p cyclic, the opposite one. The flags are not copied. In an inverted
    /// interval a time before the begin becomes the end; NaN stays.
    VTime(double t, const VTime& like, bool cyclic);

    VTime(const VTime&) = default;
    VTime& operator=(const VTime&) = default;
    ~VTime();

    /// Number of the step nearest to \p t, halves rounded up; not wrapped. 0
    /// without steps.
    double Tstep(double t) const noexcept;

    /// Number of the last step; 0 without steps.
    double maxTsteps() const noexcept;

    /// Time of step \p n, wrapped into the valid steps. A fraction gives a time
    /// between steps. `range.begin` without steps.
    double Tdiscrete(double n) const noexcept;

    /// Time of the step nearest to \p t, wrapped into the valid steps, so that a
    /// time past the end comes back near the begin. \p t without steps.
    double Tdiscretized(double t) const noexcept;

    /// One step on, from the last step to the first. Without steps the time
    /// becomes `range.begin`. Returns this object, already advanced, although
    /// it is the postfix form.
    VTime& operator++(int) noexcept;

    /// One step back, from the first step to the last; otherwise as `++`.
    VTime& operator--(int) noexcept;

    /// All fields, the texts and the flags too.
    friend bool operator==(const VTime&, const VTime&) = default;

    double time;
    Range range;
    double dt; ///< length of one step; 0 for continuous time

    /// Free texts and flags that travel with the time; nothing here reads them.
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
    /// Writes no blanks, and neither the texts nor the flags.
    static std::string Text(const VTime& time);

    /// Refuses, and changes nothing, only if the text does not begin with a
    /// number. Each further number is read behind its separator; where that is
    /// missing, behind the one before it, so that `5` is a time, an interval and a
    /// step of 5. Where nothing follows a separator the interval ends where it
    /// begins, and the step is as long as the interval. A number that cannot be
    /// read stays as it was.
    static bool setValueFromText(VTime& time, const std::string& text);
};

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<VTime>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<VTime>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<VTime>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<VTime>;
extern template class FATHOM_EXTERN_TEMPLATE TypedSlot<VTime>;

} // namespace Orla
