#include <fathom/TimeDependent.hpp>

#include "Recorders.hpp"

#include <fathom/Char.hpp>
#include <fathom/Double.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>
#include <trellis/VScheduler.hpp>

#include <gmock/gmock.h>

#include <limits>

namespace TimeDependentTest {

using namespace Orla;
using testing::ElementsAre;
using testing::HasSubstr;

static_assert(std::is_base_of_v<VSlotContainer, TimeDependent>);
static_assert(std::is_base_of_v<VManagedObjectBase, TimeDependent>);

namespace {

using Preferences = StrongPtr<VCreationPreferences>;

// Provides time.
class Clock : public VObject {
public:
    using VObject::VObject;

    bool update(VRequest&, double) override { return true; }

    const VOutput<VTime> time{this, "now", VTime{0.5, 0, 1}};
};

// Provides a value of another type.
class Meter : public VObject {
public:
    using VObject::VObject;

    bool update(VRequest&, double) override { return true; }

    const VOutput<double> height{this, "height", 0.0};
};

// Writes the time that it reads.
class Reader : public VObject, public TimeDependent {
public:
    Reader(const std::string& name, const Preferences& own, const Preferences& wanted,
           const VTime& defaultTime = VTime{})
        : VObject{name, 0, own}, TimeDependent{"time", "range", wanted, defaultTime}
    {
    }

    bool update(VRequest& request, double) override
    {
        return seen(request.valuePool()) << getTime(request.valuePool(), 0, Range{});
    }

    const VOutput<double> seen{this, "seen", 0.0};
};

// Already uses the name of the time slot.
class Earlier : public virtual VSkale {
    const TypedSlot<char> m_slot{this, "time", 'x', 0};
};
class Crowded : public VObject, public Earlier, public TimeDependent {
public:
    Crowded() : VObject{"crowded", 0, nullptr}, TimeDependent{nullptr, VTime{}, "time", "range"} {}

    bool update(VRequest&, double) override { return true; }
};

class TimeDependentTest : public testing::Test {
protected:
    TimeDependentTest() { EXPECT_EQ(VManagedObject::count(), 0u); }

    ~TimeDependentTest() override
    {
        struct RemoveAll final : VManagedObjectIterator {
            bool apply(const StrongPtr<VManagedObject>& object) override { return VManagedObject::remove(object); }
        } all;
        VManagedObject::traverse(all, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
        EXPECT_EQ(VManagedObject::count(), 0u);
    }

    template<class Object, class... Arguments>
    static StrongPtr<Object> create(Arguments&&... arguments)
    {
        const auto object = Loam::makeStrong<Object>(std::forward<Arguments>(arguments)...);
        VObject::finishCreation(object);
        return object;
    }

    // A provider that matches all preferences, so its weight is the handicap.
    static StrongPtr<Clock> createClock(double handicap, int level = 0)
    {
        const Preferences preferences(new VCreationPreferences("default", "GlobalTime"));
        preferences->setHandicap(handicap);
        return create<Clock>("clock", level, preferences);
    }

    static StrongPtr<Reader> createReader(const Preferences& wanted = {}, const VTime& defaultTime = VTime{})
    {
        return create<Reader>("reader", nullptr, wanted, defaultTime);
    }

    static StrongPtr<VParameter> timeOf(const TimeDependent& object) { return object.timeSlot().parameter(); }

    static std::string printedBy(auto action)
    {
        testing::internal::CaptureStdout();
        action();
        return testing::internal::GetCapturedStdout();
    }

    const Warnings m_warnings;
    const StrongPtr<ValuePool> m_pool{new ValuePool};
};

constexpr const char* creating = "TimeDependent: scan for time providers, nothing found, thus creating one.\n";
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST_F(TimeDependentTest, hasATimeInputThatIsAlsoAnOutputAndARangeInput)
{
    const Preferences wanted(new VCreationPreferences("a", "b"));
    struct Either final : TimeDependent {
        using TimeDependent::TimeDependent;
    };
    const StrongPtr<Either> objects[] = {Loam::makeStrong<Either>("time", "range", wanted, VTime{5, 0, 10}),
                                         Loam::makeStrong<Either>(wanted, VTime{5, 0, 10}, "time", "range")};
    for (const StrongPtr<Either>& object : objects) {
        ASSERT_EQ(object->inputs().size(), 2u);
        const StrongPtr<VSlot> time = object->inputs()[0];
        EXPECT_EQ(time->name(), "time");
        EXPECT_EQ(object->timeSlot().slot(), time);
        EXPECT_EQ(time->type(), typeid(VTime));
        EXPECT_EQ(time->expertLevel(), 5);
        EXPECT_EQ(time->flags(), VSlot::AutoConnected);
        EXPECT_EQ(time->parameter()->creationPreferences(), wanted);
        EXPECT_EQ(time->parameter()->DefaultValue()->Text(), "5[0,10]@10");

        const StrongPtr<VSlot> range = object->inputs()[1];
        EXPECT_EQ(range->name(), "range");
        EXPECT_EQ(object->rangeSlot().slot(), range);
        EXPECT_EQ(range->type(), typeid(Range));
        EXPECT_EQ(range->expertLevel(), 6);
        EXPECT_EQ(range->flags(), 0);
        EXPECT_EQ(range->parameter()->creationPreferences(), nullptr);
        EXPECT_EQ(range->parameter()->DefaultValue()->Text(), "0:1");

        ASSERT_EQ(object->outputs().size(), 1u);
        EXPECT_EQ(object->outputs()[0], time);
        EXPECT_THAT(object->setupFunctions(), ElementsAre(&TimeDependent::TimeSetupFunction));
    }
}

TEST_F(TimeDependentTest, searchesForTimeOncePerContainer)
{
    struct Twice final : TimeDependent {
        Twice() : TimeDependent{"time", "range", nullptr, VTime{}} { setupFunctions().insert(TimeSetupFunction); }
    };
    EXPECT_EQ(Loam::makeStrong<Twice>()->setupFunctions().size(), 1u);
}

TEST_F(TimeDependentTest, createsAMissingProviderOnceAndThenSharesIt)
{
    const VObjectType<Clock> clockType("GlobalTime");
    StrongPtr<Reader> first;
    StrongPtr<Reader> second;
    EXPECT_EQ(printedBy([&] { first = createReader(); }), creating);

    const StrongPtr<Clock> clock(VManagedObject::find("GlobalTime"));
    ASSERT_TRUE(clock);
    EXPECT_TRUE(clock->isRequestProcessingEnabled());
    ASSERT_TRUE(clock->creationPreferences());
    EXPECT_THAT(clock->creationPreferences()->words(), ElementsAre("default", "GlobalTime"));
    EXPECT_EQ(timeOf(*first), clock->time.parameter());
    EXPECT_EQ(first->timeSlot().slot()->member(), "");

    EXPECT_EQ(printedBy([&] { second = createReader(); }), "");
    EXPECT_EQ(timeOf(*second), clock->time.parameter());
    EXPECT_EQ(VManagedObject::count(), 3u);
    EXPECT_THAT(m_warnings.all(), ElementsAre());
}

TEST_F(TimeDependentTest, choosesTheProviderWithTheSmallestWeight)
{
    createClock(2);
    const auto best = createClock(0.5);
    createClock(1);
    EXPECT_EQ(printedBy([&] { EXPECT_EQ(timeOf(*createReader()), best->time.parameter()); }), "");

    const auto better = createClock(-3);
    EXPECT_EQ(timeOf(*createReader()), better->time.parameter());
}

TEST_F(TimeDependentTest, countsUnmetPreferencesInTheWeight)
{
    // One of the two wanted preferences is missing, which adds one to the handicap.
    const Preferences half(new VCreationPreferences("GlobalTime", "of another purpose"));
    create<Clock>("half", 0, half);
    const auto whole = createClock(0.9);
    EXPECT_EQ(timeOf(*createReader()), whole->time.parameter());
    half->setHandicap(-0.2);
    EXPECT_NE(timeOf(*createReader()), whole->time.parameter());
}

TEST_F(TimeDependentTest, intentionallyChoosesTheLastVisitedAmongEqualWeights)
{
    createClock(1);
    const auto last = createClock(1);
    EXPECT_EQ(timeOf(*createReader()), last->time.parameter());

    const auto later = createClock(1, 7); // objects are visited by level
    createClock(1, 3);
    EXPECT_EQ(timeOf(*createReader()), later->time.parameter());
}

TEST_F(TimeDependentTest, skipsProvidersWhoseWeightIsNaN)
{
    createClock(NaN);
    const auto clock = createClock(5);
    createClock(NaN);
    EXPECT_EQ(timeOf(*createReader()), clock->time.parameter());

    VManagedObject::remove(clock);
    const VObjectType<Clock> clockType("GlobalTime");
    StrongPtr<Reader> reader;
    EXPECT_EQ(printedBy([&] { reader = createReader(); }), creating);
    EXPECT_EQ(timeOf(*reader), StrongPtr<Clock>(VManagedObject::find("GlobalTime"))->time.parameter());
}

TEST_F(TimeDependentTest, skipsObjectsThatAreNotGlobalTimeSources)
{
    create<Clock>("private", 0, nullptr);
    create<Clock>("other", 0, Preferences(new VCreationPreferences("default", "OtherTime")));
    create<Meter>("meter", 0, Preferences(new VCreationPreferences("default", "GlobalTime")));
    const auto clock = createClock(100);
    create<Clock>("private too", 0, nullptr);
    EXPECT_EQ(timeOf(*createReader()), clock->time.parameter());
}

TEST_F(TimeDependentTest, keepsItsOwnTimeIfItIsLocal)
{
    createClock(0);
    StrongPtr<Reader> reader;
    const Preferences local(new VCreationPreferences("default", "local"));
    EXPECT_EQ(printedBy([&] { reader = createReader(local); }), "");
    EXPECT_TRUE(reader->setupFunctions().empty());
    EXPECT_FALSE(reader->timeSlot().slot()->isConnected());
}

TEST_F(TimeDependentTest, keepsAConnectionMadeByTheUser)
{
    createClock(0);
    const auto mine = create<Clock>("mine", 0, nullptr);
    const auto reader = Loam::makeStrong<Reader>("reader", nullptr, nullptr);
    reader->attachParameter(mine->time.parameter(), reader->timeSlot().slot(), "");
    VObject::finishCreation(reader);
    EXPECT_EQ(timeOf(*reader), mine->time.parameter());
}

TEST_F(TimeDependentTest, isNeverConnectedToItself)
{
    // It offers its time to all objects, so its own search finds it.
    const Preferences provider(new VCreationPreferences("default", "GlobalTime"));
    const VObjectType<Clock> clockType("GlobalTime");
    StrongPtr<Reader> reader;
    EXPECT_EQ(printedBy([&] { reader = create<Reader>("provider", provider, nullptr); }), creating);
    reader->detach(reader->timeSlot().slot());
    VManagedObject::remove(VManagedObject::find("GlobalTime"));

    EXPECT_EQ(printedBy([&] { reader->runSetupFunctions(); }), creating);
    ASSERT_TRUE(reader->timeSlot().slot()->isConnected());
    EXPECT_EQ(timeOf(*reader), StrongPtr<Clock>(VManagedObject::find("GlobalTime"))->time.parameter());
}

TEST_F(TimeDependentTest, passesItsTimeOnToItsFollowers)
{
    const auto clock = createClock(0);
    const auto reader = createReader();
    const auto follower = createReader(Preferences(new VCreationPreferences("default", "local")));
    const StrongPtr<VSlot> output = reader->findOutput("time");
    ASSERT_EQ(output, reader->timeSlot().slot());
    EXPECT_TRUE(follower->attachOutput(output, follower->timeSlot().slot(), ""));
    EXPECT_EQ(timeOf(*follower), clock->time.parameter());

    const auto other = create<Clock>("other", 0, nullptr);
    reader->attachParameter(other->time.parameter(), reader->timeSlot().slot(), "");
    EXPECT_EQ(timeOf(*follower), other->time.parameter());
}

TEST_F(TimeDependentTest, keepsItsPrototypeIfNoProviderIsRegistered)
{
    StrongPtr<Reader> reader;
    EXPECT_EQ(printedBy([&] { reader = createReader(nullptr, VTime{5, 0, 10}); }), creating);
    EXPECT_FALSE(reader->timeSlot().slot()->isConnected());
    EXPECT_EQ(timeOf(*reader)->DefaultValue()->Text(), "5[0,10]@10");
    EXPECT_EQ(VManagedObject::count(), 1u);
    EXPECT_THAT(m_warnings.all(), ElementsAre(HasSubstr("\"GlobalTime\"")));
}

TEST_F(TimeDependentTest, keepsItsPrototypeIfTheProviderHasNoTime)
{
    const VObjectType<Meter> noClock("GlobalTime");
    StrongPtr<Reader> reader;
    EXPECT_EQ(printedBy([&] { reader = createReader(); }), creating);
    EXPECT_FALSE(reader->timeSlot().slot()->isConnected());
    EXPECT_EQ(VManagedObject::count(), 1u);
    EXPECT_THAT(m_warnings.all(), ElementsAre(HasSubstr("of type time")));
}

TEST_F(TimeDependentTest, doesNotSearchWithoutATimeSlot)
{
    createClock(0);
    StrongPtr<Crowded> crowded;
    EXPECT_EQ(printedBy([&] { crowded = create<Crowded>(); }), "");
    EXPECT_EQ(crowded->timeSlot().slot(), nullptr);
    EXPECT_EQ(crowded->findSlot("time")->type(), typeid(char));
    EXPECT_TRUE(crowded->outputs().empty());
    EXPECT_EQ(crowded->getTime(m_pool, 0.25, Range{10, 20}), 12.5);
}

TEST_F(TimeDependentTest, reportsAContainerThatIsNotTimeDependent)
{
    const auto clock = createClock(0);
    const StrongPtr<VSlotContainer> container(new VSlotContainer);
    const TypedSlot<VTime> slot(container.get(), "time", VTime{}, 0);
    EXPECT_EQ(printedBy([&] { TimeDependent::TimeSetupFunction(container.get(), container->inputs()); }),
              "TimeDependent::TimeSetupFunction(): Not a time dependent object!?\n");
    EXPECT_EQ(printedBy([&] { TimeDependent::TimeSetupFunction(nullptr, VSlotSet()); }),
              "TimeDependent::TimeSetupFunction(): Not a time dependent object!?\n");
    EXPECT_FALSE(slot.slot()->isConnected());
    EXPECT_EQ(VManagedObject::count(), 1u);
}

TEST_F(TimeDependentTest, hasASetupHookThatDoesNothing)
{
    const auto clock = createClock(0);
    const auto reader = createReader();
    reader->setupTime(reader->inputs(), true);
    EXPECT_EQ(timeOf(*reader), clock->time.parameter());
    EXPECT_EQ(reader->setupFunctions().size(), 1u);
}

TEST_F(TimeDependentTest, mapsItsTimeOntoItsRange)
{
    const auto reader = createReader(Preferences(new VCreationPreferences("default", "local")));
    const auto timeIn = [&](const StrongPtr<ValuePool>& pool) { return reader->getTime(pool, 0.25, Range{10, 20}); };
    EXPECT_EQ(timeIn(m_pool), 12.5) << "without values in the pool";
    EXPECT_EQ(timeIn(nullptr), 12.5);

    // The range alone, then both.
    reader->rangeSlot().slot()->getLocalValue(m_pool)->setValueFromText("100:300");
    EXPECT_EQ(timeIn(m_pool), 150);
    const StrongPtr<VValueBase> time = reader->timeSlot().slot()->getLocalValue(m_pool);
    const struct {
        const char* time;
        double mapped;
    } cases[] = {
        {"0[0,1]@1", 100}, {"1[5,7]@1", 300}, {"0.5", 200}, {"1.5", 400}, {"-1", -100},
    };
    for (const auto& [text, mapped] : cases) {
        time->setValueFromText(text);
        EXPECT_EQ(timeIn(m_pool), mapped) << text;
    }

    // The time alone.
    const StrongPtr<ValuePool> second(new ValuePool);
    reader->timeSlot().slot()->getLocalValue(second)->setValueFromText("0.75");
    EXPECT_EQ(timeIn(second), 17.5);

    // 0.1 + (0.9 - 0.1) * 0.7, each step rounded; other groupings give 0.66.
    EXPECT_EQ(reader->getTime(nullptr, 0.7, Range{0.1, 0.9}), 0.6599999999999999);
}

TEST_F(TimeDependentTest, isEvaluatedWhenTheTimeChanges)
{
    const auto clock = createClock(0);
    const auto reader = createReader();
    VScheduler::scheduleAll(m_pool);
    VScheduler::run(m_pool);
    double seen = 0;
    EXPECT_TRUE(reader->seen(m_pool) >> seen);
    EXPECT_EQ(seen, 0.5);

    EXPECT_FALSE(VScheduler::isDue(reader, m_pool));
    EXPECT_TRUE(clock->time(m_pool) << VTime(0.75));
    EXPECT_TRUE(VScheduler::isDue(reader, m_pool));
    EXPECT_EQ(VScheduler::run(m_pool).updates, 1u);
    EXPECT_TRUE(reader->seen(m_pool) >> seen);
    EXPECT_EQ(seen, 0.75);
}

namespace {

// Provides time and depends on it.
class TimedClock : public VObject, public TimeDependent {
public:
    TimedClock(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, TimeDependent{"time", "range", preferences, VTime{}}
    {
    }

    bool update(VRequest&, double) override { return true; }
};

} // namespace

TEST_F(TimeDependentTest, createsOneProviderEvenIfItDependsOnTime)
{
    const VObjectType<TimedClock> type{"GlobalTime"};
    StrongPtr<Reader> reader;
    EXPECT_EQ(printedBy([&] { reader = createReader(); }), creating);
    EXPECT_EQ(VManagedObject::count(), 2u);
    const StrongPtr<TimedClock> clock(VManagedObject::find("GlobalTime"));
    ASSERT_TRUE(clock);
    EXPECT_EQ(timeOf(*reader), timeOf(*clock));
    EXPECT_FALSE(clock->timeSlot().slot()->isConnected()) << "it keeps its own time";

    // A reader of the provider's time follows the provider.
    const auto other = createClock(10);
    clock->attachOutput(other->findOutput("now"), clock->timeSlot().slot(), "");
    EXPECT_EQ(timeOf(*reader), other->time.parameter());
}

} // namespace TimeDependentTest
