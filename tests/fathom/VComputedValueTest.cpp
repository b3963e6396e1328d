#include <fathom/VComputedValue.hpp>

#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/VValue.hpp>

#include <gmock/gmock.h>

namespace VComputedValueTest {

using namespace Orla;

namespace {

double middle(const Range& range)
{
    return (range.begin + range.end) / 2;
}

using Middle = VComputedValue<Range, middle>;

class VComputedValueTest : public testing::Test {
protected:
    const StrongPtr<VValue<Range>> m_range{new VValue<Range>(Range{1, 4})};
    const StrongPtr<Middle> m_middle{new Middle(m_range)};
    const StrongPtr<Middle> m_orphan{new Middle(nullptr)};
};

} // namespace

TEST_F(VComputedValueTest, followsTheWhole)
{
    EXPECT_EQ(m_middle->Text(), "2.5");
    m_range->setValue({2, 4});
    EXPECT_EQ(m_middle->Text(), "3");
    EXPECT_EQ(&m_middle->age(), &m_range->age());
}

TEST_F(VComputedValueTest, cannotBeWritten)
{
    EXPECT_FALSE(m_middle->setValue(7));
    EXPECT_FALSE(m_middle->setValueFromText("7"));
    EXPECT_FALSE(m_middle->getValueFrom(Loam::makeStrong<VValue<double>>(7.0)));
    EXPECT_EQ(m_range->Text(), "1:4");
}

TEST_F(VComputedValueTest, isCopiedAsAPlainValue)
{
    const StrongPtr<VValueBase> copied = m_middle->copy();
    m_range->setValue({2, 4});
    EXPECT_EQ(copied->Text(), "2.5");
    EXPECT_TRUE(copied->setValueFromText("7"));
}

TEST_F(VComputedValueTest, cannotBeReadWithoutAWhole)
{
    double content = 1;
    EXPECT_FALSE(m_orphan->getValue(content));
    EXPECT_EQ(content, 1);
    EXPECT_EQ(m_orphan->Text(), "");
    EXPECT_FALSE(m_orphan->copy());
}

} // namespace VComputedValueTest
