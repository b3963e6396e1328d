#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include "tarn/LoadedLibraries.hpp"

namespace GlobalTimeTest {

using Orla::StrongPtr;
using Orla::VObject;

namespace {

class GlobalTimeTest : public LoadedLibraries {
protected:
    const StrongPtr<Orla::ValuePool> pool = Loam::makeStrong<Orla::ValuePool>();
};

} // namespace

TEST_F(GlobalTimeTest, outputsItsTime)
{
    const StrongPtr<VObject> clock = VObject::createObject("GlobalTime", "clock");
    EXPECT_TRUE(clock->findSlot("time")->setInitialText("3[1,9]@0.5"));
    Orla::VScheduler::scheduleAll(pool);
    EXPECT_EQ(Orla::VScheduler::run(pool).failures, 0u);
    EXPECT_EQ(clock->findOutput("GlobalTime")->getLocalValue(pool)->Text(), "3[1,9]@0.5");
}

TEST_F(GlobalTimeTest, beginsWithTheTimesFrom0To1)
{
    const StrongPtr<VObject> clock = VObject::createObject("GlobalTime", "clock");
    EXPECT_EQ(clock->findSlot("time")->getLocalValue(pool)->Text(), "0[0,1]@1");
    EXPECT_EQ(clock->findOutput("GlobalTime")->getLocalValue(pool)->Text(), "0[0,1]@1");
}

TEST_F(GlobalTimeTest, succeedsIfTheTimeIsUnchanged)
{
    VObject::createObject("GlobalTime", "clock");
    for (int round = 0; round < 2; ++round) {
        Orla::VScheduler::scheduleAll(pool);
        EXPECT_EQ(Orla::VScheduler::run(pool).failures, 0u);
    }
}

TEST_F(GlobalTimeTest, providesItsTimeToObjectsThatDependOnTime)
{
    const StrongPtr<VObject> clock = VObject::createObject("GlobalTime", "clock");
    const StrongPtr<VObject> reader = VObject::createObject("TimeReader", "reader");
    EXPECT_EQ(Orla::VManagedObject::count(), 2u);
    EXPECT_EQ(reader->findSlot("time")->parameter(), clock->findOutput("GlobalTime")->parameter());
}

TEST_F(GlobalTimeTest, isCreatedOnceForAllObjectsThatDependOnTime)
{
    const StrongPtr<VObject> one = VObject::createObject("TimeReader", "one");
    const StrongPtr<VObject> other = VObject::createObject("TimeReader", "other");
    EXPECT_EQ(Orla::VManagedObject::count(), 3u);
    EXPECT_EQ(one->findSlot("time")->parameter(), other->findSlot("time")->parameter());
    EXPECT_EQ(one->findSlot("time")->parameter()->DefaultValue()->Text(), "0[0,1]@1");
}

} // namespace GlobalTimeTest
