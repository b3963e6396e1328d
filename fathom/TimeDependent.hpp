#pragma once

#include <fathom/Export.hpp>
#include <fathom/Range.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VTime.hpp>

#include <trellis/VObject.hpp>

namespace Orla {

/// Mix-in for processing objects whose result depends on the current time.
///
/// Adds a time input and a range input. Unless the user connects the time input, set-up
/// connects it to a time provider: the best match among the objects that have a `VTime` output
/// and whose preferences contain "GlobalTime". If no provider exists, set-up creates an object
/// of the registered type "GlobalTime". The time input is also offered as an output, so
/// objects pass their time on.
class FATHOM_API TimeDependent : public virtual VSkale {
public:
    /// Without a provider, the time is \p defaultTime. An object whose \p preferences contain
    /// "local" keeps its own time and never looks for a provider.
    TimeDependent(const char* timeSlotName, const char* rangeSlotName,
                  const StrongPtr<VCreationPreferences>& preferences, const VTime& defaultTime);
    TimeDependent(const StrongPtr<VCreationPreferences>& preferences, const VTime& defaultTime,
                  const char* timeSlotName, const char* rangeSlotName);
    ~TimeDependent() override;

    /// Does nothing; a hook for derived classes, which this library never calls.
    virtual void setupTime(const VSlotSet& slots, bool flag);

    /// Returns the time in \p pool, as a fraction of the range there: 0 gives the range's
    /// begin, 1 its end. The arguments replace a time or range that the pool does not hold.
    double getTime(const StrongPtr<ValuePool>& pool, double defaultTime, const Range& defaultRange) const;

    const TypedSlot<VTime>& timeSlot() const noexcept { return m_time; }
    const TypedSlot<Range>& rangeSlot() const noexcept { return m_range; }

    /// Connects the time input of \p container as described above. Prints a message to
    /// standard output if \p container is not time-dependent.
    static void TimeSetupFunction(VSlotContainer* container, const VSlotSet& slots);

private:
    TypedSlot<VTime> m_time;
    TypedSlot<Range> m_range;
};

} // namespace Orla
