#include <earth/UtcText.hpp>

#include <fathom/String.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

namespace Quakes {

using Orla::describe;

/// Writes the current time as a UTC instant. The input `range` gives the seconds since
/// 1970 at the times 0 and 1.
class UtcInstant : public Orla::VObject, public Orla::TimeDependent {
public:
    UtcInstant(const std::string& name, int level, const Orla::StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}, TimeDependent{"time", "range", preferences, Orla::VTime{0}}
    {
        rangeSlot().slot()->describe(describe("The seconds since 1970 at the times 0 and 1.").in("s"));
    }

    bool update(Orla::VRequest& request, double) override
    {
        m_utc(request.valuePool()) <<= Earth::utcText(getTime(request.valuePool(), 0, Orla::Range{}));
        return true;
    }

private:
    Orla::VOutput<std::string> m_utc{this, "utc", "", describe("The current time in UTC, as ISO 8601.")};
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::UtcInstant> utcInstantType{
    "UtcInstant",
    Orla::describeType("Writes the current time as an instant in UTC.").category("Time").keywords("date", "ISO 8601")};

} // namespace
