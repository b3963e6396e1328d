#include <fathom/VComponentValue.hpp>

#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/VMemberValue.hpp>
#include <fathom/VTime.hpp>

#include <gmock/gmock.h>

namespace VComponentValueTest {

using namespace Orla;

namespace {

class VComponentValueTest : public testing::Test {
protected:
    StrongPtr<VValueBase> timeRange() const { return m_time->component("range"); }

    const StrongPtr<VValue<VTime>> m_time{new VValue<VTime>(VTime{5, 0, 10, 0.5, "a", "b", "c"})};
    const StrongPtr<VMemberValue<Range, double, &Range::begin>> m_orphan{
        new VMemberValue<Range, double, &Range::begin>(nullptr)};
};

} // namespace

TEST_F(VComponentValueTest, becomesAPlainValueWhenItIsCopied)
{
    const StrongPtr<VValueBase> copy = timeRange()->copy();
    ASSERT_TRUE(StrongPtr<VValue<Range>>(copy));
    EXPECT_TRUE(copy->setValueFromText("3:4"));
    EXPECT_EQ(m_time->Text(), "5[0,10]@0.5");
}

TEST_F(VComponentValueTest, hasTheAgeOfTheWhole)
{
    const StrongPtr<VValueBase> end = timeRange()->component("end");
    EXPECT_EQ(&end->age(), &m_time->age());
    const VValueBase& constant = *end;
    EXPECT_EQ(&constant.age(), &m_time->age());
    EXPECT_EQ(m_orphan->age().stamp(), static_cast<const VValueBase&>(*m_orphan).age().stamp());
}

TEST_F(VComponentValueTest, hasTheSourceOfTheWhole)
{
    struct Produced final : VValue<Range> {
        WeakPtrImpl<VManagedObject, VManagedObjectBase> source() override { return producer; }
        const StrongPtr<VManagedObject> producer{new VManagedObject("producer", 0)};
    };
    const auto range = Loam::makeStrong<Produced>();
    EXPECT_EQ(range->component("end")->source().lock(), range->producer);
    EXPECT_FALSE(timeRange()->component("end")->source());
    EXPECT_FALSE(m_orphan->source());
}

TEST_F(VComponentValueTest, hasTheCreatorOfItsType)
{
    EXPECT_EQ(m_time->component("time")->getValueCreator(), VValueCreator::find("double"));
    EXPECT_EQ(timeRange()->getValueCreator(), VValueCreator::find("Range"));
}

TEST_F(VComponentValueTest, isExportedLikeAPlainValue)
{
    const StrongPtr<Loam::Chunk<double>> chunk(m_time->component("time")->getChunk(2));
    ASSERT_TRUE(chunk);
    EXPECT_THAT(chunk->base_vector(), testing::ElementsAre(5, 5));
}

TEST_F(VComponentValueTest, keepsTheWholeAlive)
{
    StrongPtr<VValue<Range>> range(new VValue<Range>(Range{1, 2}));
    const WeakPtrImpl<VValueBase> watched(range);
    StrongPtr<VValueBase> begin = range->component("begin");
    range.reset();
    EXPECT_FALSE(watched.expired());
    EXPECT_EQ(begin->Text(), "1");
    begin.reset();
    EXPECT_TRUE(watched.expired());
}

} // namespace VComponentValueTest
