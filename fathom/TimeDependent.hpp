#pragma once

#include <fathom/Export.hpp>
#include <fathom/Range.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VTime.hpp>

#include <trellis/VObject.hpp>

namespace Orla {

/// Mix-in for processing objects whose result depends on the current time.
///
/// Adds a time input and a range input. Unless the user connects the time input,
/// it is connected at set-up to the process's time provider: the object among
/// those with a `VTime` output whose preferences contain "GlobalTime" that suits
/// best. Without one, an object of the registered type "GlobalTime" is made. The
/// time input is offered as an output too, so that objects pass their time on.
class FATHOM_API TimeDependent : public virtual VSkale {
public:
    /// \p defaultTime counts where there is no provider. An object whose
    /// \p preferences contain "local" keeps its own time and never looks for one.
    TimeDependent(const char* timeSlotName, const char* rangeSlotName,
                  const StrongPtr<VCreationPreferences>& preferences, const VTime& defaultTime);
    TimeDependent(const StrongPtr<VCreationPreferences>& preferences, const VTime& defaultTime,
                  const char* timeSlotName, const char* rangeSlotName);
    ~TimeDependent() override;

    /// Called by nobody here; a place for derived classes.
    virtual void setupTime(const VSlotSet& slots, bool flag);

    /// The time in \p pool, taken as a fraction of the range there: 0 is the
    /// range's begin and 1 its end. Where the pool holds no time or range, the
    /// arguments count.
    double getTime(const StrongPtr<ValuePool>& pool, double defaultTime, const Range& defaultRange) const;

    const TypedSlot<VTime>& timeSlot() const noexcept { return m_time; }
    const TypedSlot<Range>& rangeSlot() const noexcept { return m_range; }

    /// Connects the time input of \p container, as told above. Says so on standard
    /// output if \p container is no time dependent object.
    static void TimeSetupFunction(VSlotContainer* container, const VSlotSet& slots);

private:
    TypedSlot<VTime> m_time;
    TypedSlot<Range> m_range;
};

} // namespace Orla
