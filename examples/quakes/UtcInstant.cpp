#include <earth/UtcText.hpp>

#include <fathom/String.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

namespace Quakes {

/// Writes the current time as a UTC instant. The input `range` gives the seconds since
/// 1970 at the times 0 and 1.
class UtcInstant : public Orla::VObject, public Orla::TimeDependent {
public:
    UtcInstant(const std::string& name, int level, const Orla::StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}, TimeDependent{"time", "range", preferences, Orla::VTime{0}}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        m_utc(request.valuePool()) <<= Earth::utcText(getTime(request.valuePool(), 0, Orla::Range{}));
        return true;
    }

private:
    Orla::VOutput<std::string> m_utc{this, "utc", ""};
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::UtcInstant> utcInstantType{"UtcInstant"};

} // namespace
