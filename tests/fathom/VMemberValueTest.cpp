#include <fathom/VMemberValue.hpp>

#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/VTime.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

namespace VMemberValueTest {

using namespace Orla;

namespace {

using Begin = VMemberValue<Range, double, &Range::begin>;

class VMemberValueTest : public testing::Test {
protected:
    // "range.begin" is the component "begin" of the component "range".
    StrongPtr<VValueBase> component(const std::string& path) const
    {
        StrongPtr<VValueBase> value = m_time;
        for (std::size_t at = 0; at < path.size() && value;) {
            const std::size_t dot = std::min(path.find('.', at), path.size());
            value = value->component(path.substr(at, dot - at));
            at = dot + 1;
        }
        return value;
    }

    const StrongPtr<VValue<VTime>> m_time{new VValue<VTime>(VTime{5, 0, 10, 0.5, "a", "b", "c"})};
    const StrongPtr<Begin> m_orphan{new Begin(nullptr)};
};

} // namespace

TEST_F(VMemberValueTest, readsItsPartOfTheWhole)
{
    const struct {
        const char* path;
        const char* text;
        const std::type_info& type;
    } cases[] = {
        {"", "5[0,10]@0.5", typeid(VTime)}, {"time", "5", typeid(double)},        {"dt", "0.5", typeid(double)},
        {"range", "0:10", typeid(Range)},   {"range.begin", "0", typeid(double)}, {"range.end", "10", typeid(double)},
    };
    for (const auto& [path, text, type] : cases) {
        SCOPED_TRACE(path);
        const StrongPtr<VValueBase> value = component(path);
        ASSERT_TRUE(value);
        EXPECT_EQ(value->getType(), type);
        EXPECT_EQ(value->Text(), text);
    }
}

TEST_F(VMemberValueTest, isWrittenThroughToTheWhole)
{
    const struct {
        const char* path;
        const char* text;
        const char* whole;
    } cases[] = {
        {"time", "6", "6[0,10]@0.5"},        {"dt", "2", "6[0,10]@2"},
        {"range", "3:4", "6[3,4]@2"},        {"range.begin", "-1", "6[-1,4]@2"},
        {"range.end", "1.5", "6[-1,1.5]@2"},
    };
    for (const auto& [path, text, whole] : cases) {
        SCOPED_TRACE(path);
        EXPECT_TRUE(component(path)->setValueFromText(text));
        EXPECT_EQ(m_time->Text(), whole);
    }
    VTime time;
    m_time->getValue(time);
    EXPECT_EQ(time.info1 + time.info2 + time.info3, "abc") << "the other parts are unchanged";
}

TEST_F(VMemberValueTest, followsTheWhole)
{
    const StrongPtr<VValueBase> end = component("range.end");
    m_time->setValueFromText("0[7,8]@1");
    EXPECT_EQ(end->Text(), "8");
}

TEST_F(VMemberValueTest, takesItsContentFromAValueOfItsType)
{
    const StrongPtr<VValueBase> range = component("range");
    EXPECT_TRUE(range->getValueFrom(Loam::makeStrong<VValue<Range>>(Range{3, 4})));
    EXPECT_EQ(m_time->Text(), "5[3,4]@0.5");
    EXPECT_TRUE(component("time")->getValueFrom(component("range.end")));
    EXPECT_EQ(m_time->Text(), "4[3,4]@0.5");

    EXPECT_FALSE(range->getValueFrom(m_time));
    EXPECT_FALSE(range->getValueFrom(nullptr));
    WeakPtrImpl<VValueBase> dead;
    {
        const auto value = Loam::makeStrong<VValue<Range>>();
        dead = value;
    }
    EXPECT_FALSE(range->getValueFrom(dead));
    EXPECT_FALSE(component("time")->getValueFrom(m_orphan));
    EXPECT_EQ(m_time->Text(), "4[3,4]@0.5");
}

TEST_F(VMemberValueTest, leavesTheWholeUnchangedIfItsTextIsRefused)
{
    EXPECT_FALSE(component("time")->setValueFromText("x"));
    EXPECT_FALSE(component("range")->setValueFromText("7:x"));
    EXPECT_EQ(m_time->Text(), "5[0,10]@0.5");
}

TEST_F(VMemberValueTest, canBeMovedToAnotherWhole)
{
    m_orphan->setContainerValue(Loam::makeStrong<VValue<Range>>(Range{8, 9}));
    EXPECT_EQ(m_orphan->Text(), "8");
    m_orphan->setContainerValue(component("range"));
    EXPECT_TRUE(m_orphan->setValue(1));
    EXPECT_EQ(m_time->Text(), "5[1,10]@0.5");
}

TEST_F(VMemberValueTest, canBeNeitherReadNorWrittenWithoutAWholeOfTheRightType)
{
    const StrongPtr<Begin> stray(new Begin(m_time)); // a VTime is not a Range
    for (const StrongPtr<Begin>& part : {m_orphan, stray}) {
        double number = 7;
        EXPECT_FALSE(part->getValue(number));
        EXPECT_EQ(number, 7);
        EXPECT_FALSE(part->setValue(1));
        EXPECT_FALSE(part->setValueFromText("1"));
        EXPECT_FALSE(part->getValueFrom(Loam::makeStrong<VValue<double>>(1.0)));
        EXPECT_EQ(part->Text(), "");
        EXPECT_EQ(part->copy(), nullptr);
    }
    EXPECT_EQ(m_time->Text(), "5[0,10]@0.5");
}

TEST_F(VMemberValueTest, isListedByTheTypeItIsPartOf)
{
    EXPECT_THAT(VValueComponents::names(typeid(Range)), testing::ElementsAre("begin", "end"));
    EXPECT_THAT(VValueComponents::names(typeid(VTime)), testing::ElementsAre("time", "range", "dt"));
    EXPECT_EQ(*VValueComponents::typeOf(typeid(VTime), "range"), typeid(Range));
    EXPECT_EQ(*VValueComponents::typeOf(typeid(Range), "end"), typeid(double));
    EXPECT_EQ(VValueComponents::typeOf(typeid(VTime), "info1"), nullptr);
    EXPECT_EQ(component("begin"), nullptr);
    EXPECT_EQ(component("range.middle"), nullptr);
}

} // namespace VMemberValueTest
