#include <tarn/standard/Moment.hpp>
#include <tarn/standard/TimeStep.hpp>

#include <fathom/TypedSlot.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VTime.hpp>
#include <fathom/VTimeSource.hpp>

#include <trellis/VObjectCreator.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace Tarn {

namespace {

using Loam::Failure;
using Orla::describe;
using Orla::StrongPtr;
using Orla::VTime;

std::string inQuotesWithText(const char* name, const Moment& moment)
{
    return '"' + std::string(name) + "\" is " + Orla::VValueTrait<Moment>::Text(moment);
}

// Returns the distance from the number to the next larger one.
double resolutionAt(double number) noexcept
{
    return std::nextafter(std::abs(number), std::numeric_limits<double>::infinity()) - std::abs(number);
}

// A host asks for the time before the first evaluation, when the pool may have no values yet.
template<class T>
T valueIn(const Orla::TypedSlot<T>& slot, const StrongPtr<Orla::ValuePool>& pool)
{
    slot.slot()->getLocalValue(pool);
    return slot.value(pool);
}

/// Provides the time to every object that does not keep its own. The host writes the input `time`;
/// time-dependent objects read the output.
///
/// The interval and the step of the time are those of `time`, or those of the inputs `from`, `to`
/// and `step`: then the output is in seconds, for instants since 1970-01-01T00:00:00Z. The last step is the last one that is not after `to`. Without a
/// `step`, one step spans the interval.
///
/// Fails if only some of these inputs are given, or `time` as well, if one end is an instant and the other a number,
/// if `to` is before `from`, or if the step is so short that the numbers of the times are too
/// coarse for it.
class GlobalTime final : public Orla::VObject, public Orla::VTimeSource {
public:
    GlobalTime(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}
        , m_time{this, "time", initialTime(), describe("The time, its interval and its step, as TIME[FROM,TO]@STEP.")}
        , m_from{this, "from", Moment{}, describe("Where the time begins: seconds, days such as 1.5 d, or an instant.")}
        , m_to{this, "to", Moment{}, describe("Where the time ends, in the same form.")}
        , m_step{this, "step", TimeStep{}, describe("The length of a step, more than 0.")}
        , m_globalTime{this, "GlobalTime", initialTime(), describe("The current time.")}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const Loam::Result<VTime> time = steppedTime(request.valuePool());
        if (!time)
            throw std::runtime_error{time.reason()};
        // Succeeds whether or not the value changed.
        m_globalTime(request.valuePool()) <<= *time;
        return true;
    }

    Loam::Result<VTime> steppedTime(const StrongPtr<Orla::ValuePool>& pool) const override
    {
        VTime time = valueIn(m_time, pool);
        const Moment from = valueIn(m_from, pool);
        const Moment to = valueIn(m_to, pool);
        const TimeStep step = valueIn(m_step, pool);
        if (!isGiven(from) && !isGiven(to) && !step.isGiven())
            return time;
        if (hasOwnInterval())
            return Failure{"found \"time\" set beside \"from\", \"to\" or \"step\", expected either"};
        if (!isGiven(from) || !isGiven(to))
            return Failure{std::string("found no \"") + (isGiven(from) ? "to" : "from")
                           + "\", expected both \"from\" and \"to\""};
        if (from.kind != to.kind)
            return Failure{inQuotesWithText("from", from) + " and " + inQuotesWithText("to", to)
                           + ", expected two instants or two numbers"};
        const double begin = from.seconds();
        const double end = to.seconds();
        if (end < begin)
            return Failure{inQuotesWithText("to", to) + ", expected a time not before \"from\", "
                           + Orla::VValueTrait<Moment>::Text(from)};
        const double length = end - begin;
        if (!std::isfinite(length))
            return Failure{"the interval from " + Loam::numberText(begin) + " to " + Loam::numberText(end)
                           + " is too long"};
        const double resolution = std::max(resolutionAt(begin), resolutionAt(end));
        const double dt = step.isGiven() ? step.length.seconds() : length;
        if (dt < LeastStep * resolution && step.isGiven())
            return Failure{"\"step\" is " + step.length.text() + ", expected "
                           + Loam::numberText(LeastStep * resolution) + " s or more at this distance from 0"};

        const Orla::Range interval{begin, lastTime(begin, end, dt, resolution)};
        // Until the host has written a time of this interval, it begins.
        if (time.range != interval || time.dt != dt)
            time.time = begin;
        time.range = interval;
        time.dt = dt;
        return time;
    }

private:
    // The steps of an interval are as even as its numbers permit, to one part in this.
    static constexpr double LeastStep = 16;

    static VTime initialTime() { return VTime{0, 0, 1}; }

    // The host writes into pools, so another initial value is the user's.
    bool hasOwnInterval() const
    {
        VTime time;
        const StrongPtr<Orla::VValueBase> initial = m_time.slot()->ownParameter()->DefaultValue();
        const auto* const typed = Orla::VTypedValueBase<VTime>::cast(initial.get());
        return typed && typed->getValue(time) && time != initialTime();
    }

    static bool isGiven(const Moment& moment) noexcept { return moment.kind != Moment::Kind::None; }

    // Returns `end` if a step reaches it but for rounding, else the time of the last step before.
    static double lastTime(double begin, double end, double dt, double resolution) noexcept
    {
        const double steps = (end - begin) / dt;
        const double tolerance = 2 * resolution / dt + 4 * std::numeric_limits<double>::epsilon() * steps;
        // Negated for an interval of length 0 without a step, which has NaN steps.
        if (!(std::abs(steps - std::round(steps)) > tolerance))
            return end;
        return begin + dt * std::floor(steps);
    }

    Orla::TypedSlot<VTime> m_time;
    Orla::TypedSlot<Moment> m_from;
    Orla::TypedSlot<Moment> m_to;
    Orla::TypedSlot<TimeStep> m_step;
    Orla::VOutput<VTime> m_globalTime;
};

const Orla::VObjectType<GlobalTime> globalTimeType{
    "GlobalTime",
    Orla::describeType("The clock of a network: provides the time to each object that depends on it.")
        .category("Time")
        .keywords("clock", "step", "instant"),
    Loam::makeStrong<Orla::VCreationPreferences>("default", "GlobalTime")};

} // namespace

} // namespace Tarn
