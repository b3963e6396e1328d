#include <fathom/Double.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

class SampleObjectTest : public testing::Test {
protected:
    ~SampleObjectTest() override { Orla::VManagedObject::remove(object); }

    void set(const std::string& input, const std::string& text)
    {
        EXPECT_TRUE(object->findSlot(input)->setInitialText(text));
    }

    // Returns the number of objects that failed.
    std::size_t failures()
    {
        Orla::VScheduler::scheduleAll(pool);
        return Orla::VScheduler::run(pool).failures;
    }

    const Orla::StrongPtr<Orla::VObject> object = Orla::VObject::createObject("SampleObject", "object");
    const Orla::StrongPtr<Orla::ValuePool> pool = Loam::makeStrong<Orla::ValuePool>();
};

TEST_F(SampleObjectTest, multipliesItsNumberByTheFactor)
{
    set("number", "1.5");
    set("factor", "-4");
    EXPECT_EQ(failures(), 0u);
    EXPECT_EQ(object->findOutput("result")->get<double>(pool), -6);
}

TEST_F(SampleObjectTest, failsIfTheFactorIsNotFinite)
{
    set("factor", "inf");
    EXPECT_EQ(failures(), 1u);
}

} // namespace
