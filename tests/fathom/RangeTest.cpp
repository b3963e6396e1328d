#include <fathom/Range.hpp>

#include "support/SlotLaws.hpp"
#include "support/ValueLaws.hpp"

#include <limits>
#include <type_traits>

namespace RangeTest {

using namespace Orla;

static_assert(std::has_virtual_destructor_v<Range>);
static_assert(std::is_nothrow_copy_constructible_v<Range>);

} // namespace RangeTest

template<>
std::vector<Orla::Range> samples<Orla::Range>()
{
    using Orla::Range;
    return {{}, {10, 0}, {-1.5, 1.0 / 3}, {-std::numeric_limits<double>::infinity(), 1e300}};
}

namespace RangeTest {

INSTANTIATE_TYPED_TEST_SUITE_P(Range, ValueLaws, Range);
INSTANTIATE_TYPED_TEST_SUITE_P(Range, SlotLaws, Range);

TEST(Range, spansZeroToOneByDefault)
{
    EXPECT_EQ(Range().begin, 0);
    EXPECT_EQ(Range().end, 1);
}

TEST(Range, isEqualOnlyIfBothBoundsAreEqual)
{
    EXPECT_EQ((Range{2, 3}), (Range{2, 3}));
    EXPECT_NE((Range{2, 3}), (Range{2, 4}));
    EXPECT_NE((Range{2, 3}), (Range{1, 3}));
}

TEST(Range, isDifferentFromItselfIfItContainsNaN)
{
    // A plain number, in contrast, never differs from NaN.
    const Range none{std::numeric_limits<double>::quiet_NaN(), 0};
    EXPECT_TRUE(VValue<Range>(none).isDifferentFrom(Loam::makeStrong<VValue<Range>>(none)));
}

TEST(Range, writesBothBoundsWithAColon)
{
    EXPECT_EQ(VValueTrait<Range>::Text(Range{4.5, 10}), "4.5:10");
    EXPECT_EQ(VValueTrait<Range>::Text(Range{0, -0.1}), "0:-0.1");
}

TEST(Range, readsItsBeginBeforeTheFirstSeparatorAndItsEndAfterTheLast)
{
    const struct {
        const char* text;
        Range range;
    } cases[] = {
        {"0:1", {0, 1}},
        {"0,1", {0, 1}},
        {"1:2:3", {1, 3}},
        {"1,2,3", {1, 3}},
        {" 4.5 : 10 km", {4.5, 10}},
        {"5", {5, 5}},
        {"5 or so", {5, 5}},
        {"0,5:1", {0, 1}}, // if there is a colon, a comma only ends the number
        {"0:1,5", {0, 1}},
        {"-inf:1e300", {-std::numeric_limits<double>::infinity(), 1e300}},
    };
    for (const auto& [text, range] : cases) {
        SCOPED_TRACE(text);
        Range read{-7, -8};
        EXPECT_TRUE(VValueTrait<Range>::setValueFromText(read, text));
        EXPECT_EQ(read, range);
    }
}

TEST(Range, intentionallyKeepsTheNewBeginIfTheEndIsRefused)
{
    const struct {
        const char* text;
        Range left;
    } cases[] = {
        {"", {-7, -8}},  {":", {-7, -8}},  {",3", {-7, -8}},  {"x:3", {-7, -8}},
        {"3:", {3, -8}}, {"3:x", {3, -8}}, {"3:4:", {3, -8}}, {"3,", {3, -8}},
    };
    for (const auto& [text, left] : cases) {
        SCOPED_TRACE(text);
        Range read{-7, -8};
        EXPECT_FALSE(VValueTrait<Range>::setValueFromText(read, text));
        EXPECT_EQ(read, left);
    }
}

} // namespace RangeTest
