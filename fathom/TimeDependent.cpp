#include <fathom/TimeDependent.hpp>

#include <cmath>
#include <cstdio>
#include <map>

namespace Orla {

TimeDependent::TimeDependent(const char* timeSlotName, const char* rangeSlotName,
                             const StrongPtr<VCreationPreferences>& preferences, const VTime& defaultTime)
    : m_time{this, timeSlotName, defaultTime, preferences, 5, true}, m_range{this, rangeSlotName, Range{}, 6}
{
    registerOutput(m_time.slot());
    if (m_time.slot()) {
        m_time.slot()->setFlag(VSlot::AutoConnected);
        m_time.slot()->describe(describe("The current time, which runs from the begin of the range to its end."));
    }
    if (m_range.slot())
        m_range.slot()->describe(describe("What the times 0 and 1 mean."));
    if (preferences && preferences->contains("local"))
        return;
    setupFunctions().insert(TimeSetupFunction);
}

TimeDependent::TimeDependent(const StrongPtr<VCreationPreferences>& preferences, const VTime& defaultTime,
                             const char* timeSlotName, const char* rangeSlotName)
    : TimeDependent{timeSlotName, rangeSlotName, preferences, defaultTime}
{
}

TimeDependent::~TimeDependent() = default;

void TimeDependent::setupTime(const VSlotSet&, bool)
{
}

void TimeDependent::TimeSetupFunction(VSlotContainer* container, const VSlotSet&)
{
    auto* const self = dynamic_cast<TimeDependent*>(container);
    if (!self) {
        std::printf("TimeDependent::TimeSetupFunction(): Not a time dependent object!?\n");
        return;
    }
    const StrongPtr<VSlot>& slot = self->m_time.slot();
    if (!slot || !slot->parameter())
        return;
    if (const StrongPtr<VSlotContainer> owner = slot->parameter()->owner(); owner && owner.get() != container)
        return; // the user has connected it

    struct FindTimeObject final : VOutputIterator {
        explicit FindTimeObject(const VSlot& theInput) : input{theInput} {}

        bool apply(const StrongPtr<VObject>& object, const std::type_info&, const StrongPtr<VSlot>& output) override
        {
            const StrongPtr<VCreationPreferences>& offered = object->creationPreferences();
            if (!offered || !offered->contains("GlobalTime"))
                return true;
            const double weight = offered->weight(*preferences);
            const StrongPtr<VParameter, ValueNotifierList>& parameter = output->parameter();
            if (!parameter) {
                std::printf("      ... but no parameter available ...\n");
                return true;
            }
            // A provider may itself depend on time. It must not be connected to itself, nor to
            // an object that passes its time on.
            if (output->container() == input.container() || parameter == input.ownParameter())
                return true;
            // NaN cannot be ordered.
            if (!std::isnan(weight))
                candidates[weight] = parameter;
            return true;
        }

        const VSlot& input;
        StrongPtr<VCreationPreferences> preferences{new VCreationPreferences("default", "GlobalTime")};
        std::map<double, StrongPtr<VParameter, ValueNotifierList>> candidates;
    } finder{*slot};

    VObject::findOutputObjects(typeid(VTime), finder, "GlobalTime");
    if (!finder.candidates.empty()) {
        container->attachParameter(finder.candidates.begin()->second, slot, "");
        return;
    }
    // A time-dependent provider keeps its own time while it is the only provider.
    if (container->object() && VObject::isBeingProvided(*container->object(), "GlobalTime"))
        return;
    std::puts("TimeDependent: scan for time providers, nothing found, thus creating one.");
    VObject::attachNewObject(container->object(), slot, "GlobalTime", finder.preferences);
}

double TimeDependent::getTime(const StrongPtr<ValuePool>& pool, double defaultTime, const Range& defaultRange) const
{
    VTime time{defaultTime};
    m_time.read(pool, time);
    Range range = defaultRange;
    m_range.read(pool, range);
    return range.begin + (range.end - range.begin) * time.time;
}

} // namespace Orla
