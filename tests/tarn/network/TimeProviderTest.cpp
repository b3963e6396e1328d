#include <tarn/network/TimeProvider.hpp>

#include <fathom/Double.hpp>
#include <fathom/VTimeSource.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VScheduler.hpp>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <vector>

namespace TimeProviderTest {

using namespace Tarn;
using Orla::StrongPtr;
using Orla::VTime;

namespace {

class Clock : public Orla::VObject {
public:
    Clock(const std::string& name, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, 0, preferences}, m_number{this, "number", 0.0, 0}, m_time{this, "time", VTime{0, 0, 1}, 0}
    {
        registerOutput(m_time.slot());
    }

    bool update(Orla::VRequest&, double) override { return true; }

private:
    Orla::TypedSlot<double> m_number;
    Orla::TypedSlot<VTime> m_time;
};

class ComputingClock final : public Clock, public Orla::VTimeSource {
public:
    using Clock::Clock;

    Loam::Result<VTime> steppedTime(const StrongPtr<Orla::ValuePool>&) const override
    {
        if (!reason.empty())
            return Loam::Failure{reason};
        return VTime{0, 0, 7};
    }

    std::string reason;
};

StrongPtr<Orla::VCreationPreferences> makePreferences(const std::string& purpose, const std::string& wish,
                                                      double handicap = 0)
{
    const auto preferences = Loam::makeStrong<Orla::VCreationPreferences>(purpose, wish);
    preferences->setHandicap(handicap);
    return preferences;
}

class WarningListener final : public Orla::VActionNotifier {
public:
    bool warned(const std::string& message) override
    {
        messages.push_back(message);
        return true;
    }

    std::vector<std::string> messages;
};

class TimeProviderTest : public testing::Test {
protected:
    TimeProviderTest() { Orla::VActionNotifier::add(warnings); }

    ~TimeProviderTest() override
    {
        for (const auto& clock : m_clocks)
            Orla::VManagedObject::remove(clock);
    }

    StrongPtr<Orla::VObject> announce(const std::string& name, const StrongPtr<Orla::VCreationPreferences>& preferences)
    {
        const StrongPtr<Orla::VObject> clock = Loam::makeStrong<Clock>(name, preferences);
        Orla::VObject::finishCreation(clock);
        m_clocks.push_back(clock);
        return clock;
    }

    const StrongPtr<WarningListener> warnings = Loam::makeStrong<WarningListener>();
    const StrongPtr<Orla::ValuePool> pool = Loam::makeStrong<Orla::ValuePool>();

private:
    std::vector<StrongPtr<Orla::VObject>> m_clocks;
};

} // namespace

TEST_F(TimeProviderTest, isOptional)
{
    announce("local", makePreferences("local", "time"));
    announce("indifferent", nullptr);
    EXPECT_FALSE(TimeProvider::find());
    EXPECT_FALSE(TimeProvider{}.exists());
}

TEST_F(TimeProviderTest, isTheObjectThatFitsBest)
{
    announce("special", makePreferences("special", "GlobalTime"));
    announce("best", makePreferences("default", "GlobalTime"));
    announce("reserve", makePreferences("default", "GlobalTime", 0.5));
    announce("broken", makePreferences("default", "GlobalTime", std::numeric_limits<double>::quiet_NaN()));
    const TimeProvider provider = TimeProvider::find();
    ASSERT_TRUE(provider);
    EXPECT_EQ(provider.name(), "best");
    EXPECT_EQ(provider.inputName(), "time");
    EXPECT_THAT(warnings->messages, testing::IsEmpty());
}

TEST_F(TimeProviderTest, isTheLastOfEqualCandidatesWithAWarning)
{
    announce("first", makePreferences("default", "GlobalTime"));
    announce("last", makePreferences("default", "GlobalTime"));
    EXPECT_EQ(TimeProvider::find().name(), "last");
    EXPECT_THAT(warnings->messages, testing::ElementsAre("2 objects provide the global time; \"last\" is stepped"));
}

TEST_F(TimeProviderTest, isNotAnObjectThatReadsItsTimeFromAnother)
{
    const auto free = announce("free", makePreferences("special", "GlobalTime"));
    const auto led = announce("led", makePreferences("default", "GlobalTime"));
    ASSERT_TRUE(led->attachOutput(free->findOutput("time"), led->findSlot("time"), ""));
    EXPECT_EQ(TimeProvider::find().name(), "free");
}

TEST_F(TimeProviderTest, stepsTheTimeAndKeepsTheOtherFields)
{
    const auto clock = announce("clock", makePreferences("default", "GlobalTime"));
    const TimeProvider provider = TimeProvider::find();
    VTime time{0.25, 0, 1, 0.25, "one", "two", "three"};
    time.flagA = true;
    provider.setStep(pool, time, 3);
    VTime expected = time;
    expected.time = 0.75;
    EXPECT_EQ(*provider.time(pool), expected);
    EXPECT_TRUE(Orla::VScheduler::isDue(clock, pool));
}

TEST_F(TimeProviderTest, hasTheIntervalThatATimeSourceComputesOrItsReason)
{
    const auto clock = Loam::makeStrong<ComputingClock>("clock", makePreferences("default", "GlobalTime"));
    Orla::VObject::finishCreation(clock);
    const TimeProvider provider = TimeProvider::find();
    EXPECT_EQ(*provider.time(pool), (VTime{0, 0, 7}));
    clock->reason = "it is broken";
    EXPECT_EQ(provider.time(pool).reason(), "it is broken");
    Orla::VManagedObject::remove(clock);
}

TEST_F(TimeProviderTest, detectsThatItsObjectIsDestroyed)
{
    StrongPtr<Orla::VObject> clock = Loam::makeStrong<Clock>("clock", makePreferences("default", "GlobalTime"));
    Orla::VObject::finishCreation(clock);
    const TimeProvider provider = TimeProvider::find();
    EXPECT_TRUE(provider.exists());
    Orla::VManagedObject::remove(clock);
    clock.reset();
    EXPECT_FALSE(provider.exists());
}

TEST(StepCount, includesBothEnds)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const struct {
        VTime time;
        double count;
    } cases[] = {
        {VTime{0, 0, 1, 0.015625, "", "", ""}, 65},
        {VTime{0, 0, 1}, 2},
        {VTime{5}, 1},
        {VTime{0, 0, 10, 3, "", "", ""}, 4},
        {VTime{0, 1, 0, -0.5, "", "", ""}, 3},
        {VTime{0, 0, 10, -1, "", "", ""}, -9},
        {VTime{0, 0, infinity, 1, "", "", ""}, infinity},
        {VTime{0, 0, 1, std::nan(""), "", "", ""}, 1},
    };
    for (const auto& [time, count] : cases) {
        SCOPED_TRACE(Orla::VValueTrait<VTime>::Text(time));
        EXPECT_EQ(TimeProvider::stepCount(time), count);
    }
    EXPECT_TRUE(std::isnan(TimeProvider::stepCount(VTime{0, 0, std::nan(""), 1, "", "", ""})));
}

} // namespace TimeProviderTest
