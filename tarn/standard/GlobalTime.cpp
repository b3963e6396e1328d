#include <fathom/TypedSlot.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VTime.hpp>

#include <trellis/VObjectCreator.hpp>

#include <string>

namespace Tarn {

namespace {

using Orla::StrongPtr;

/// Provides the time to every object that does not keep its own. The host writes the
/// input; time-dependent objects read the output.
class GlobalTime final : public Orla::VObject {
public:
    GlobalTime(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}
        , m_time{this, "time", initialTime(), 0}
        , m_globalTime{this, "GlobalTime", initialTime()}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        // Succeeds whether or not the value changed.
        m_globalTime(request.valuePool()) <<= m_time.value(request.valuePool());
        return true;
    }

private:
    static Orla::VTime initialTime() { return Orla::VTime{0, 0, 1}; }

    Orla::TypedSlot<Orla::VTime> m_time;
    Orla::VOutput<Orla::VTime> m_globalTime;
};

const Orla::VObjectType<GlobalTime> globalTimeType{
    "GlobalTime", Loam::makeStrong<Orla::VCreationPreferences>("default", "GlobalTime")};

} // namespace

} // namespace Tarn
