#include <fathom/VTime.hpp>

#include "support/SlotLaws.hpp"
#include "support/ValueLaws.hpp"

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace VTimeTest {

using namespace Orla;

static_assert(!std::is_convertible_v<double, VTime>, "a bare number is not a time");
static_assert(!std::is_constructible_v<VTime, int, double, bool>, "a flag is not the end of an interval");
static_assert(std::is_constructible_v<VTime, int, double, int>);
static_assert(std::is_constructible_v<VTime, int, VTime, bool>);
static_assert(!std::has_virtual_destructor_v<VTime>);
static_assert(std::is_same_v<decltype(std::declval<VTime&>()++), VTime&>);
static_assert(std::is_same_v<decltype(std::declval<VTime&>()--), VTime&>);

} // namespace VTimeTest

template<>
std::vector<Orla::VTime> samples<Orla::VTime>()
{
    using Orla::VTime;
    return {VTime{}, VTime{3}, VTime{1.0 / 3, 0, 10, 0.1, "", "", ""}, VTime{5, 10, 0},
            VTime{1517356800, 1517356800, 1518048000, 10800, "", "", ""}};
}

namespace VTimeTest {

INSTANTIATE_TYPED_TEST_SUITE_P(VTime, ValueLaws, VTime);
INSTANTIATE_TYPED_TEST_SUITE_P(VTime, SlotLaws, VTime);

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

VTime stepped(double begin, double end, double dt, double time = 0)
{
    return VTime{time, begin, end, dt, "", "", ""};
}

// Equal, or both NaN.
testing::AssertionResult same(double a, double b)
{
    if (a == b || (std::isnan(a) && std::isnan(b)))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << VValueTrait<double>::Text(a) << " is not " << VValueTrait<double>::Text(b);
}

} // namespace

TEST(VTime, isZeroAndContinuousByDefault)
{
    EXPECT_EQ(VTime{}, VTime{0});
}

TEST(VTime, spansOnlyItselfWithoutSteps)
{
    const VTime time{3};
    EXPECT_EQ(time.time, 3);
    EXPECT_EQ(time.range, (Range{3, 3}));
    EXPECT_EQ(time.dt, 0);
    EXPECT_EQ(time.info1 + time.info2 + time.info3, "");
    EXPECT_FALSE(time.flagA);
    EXPECT_TRUE(time.flagB);
}

TEST(VTime, coversAnIntervalInOneStepByDefault)
{
    const VTime time{0, 2, 4};
    EXPECT_EQ(time.time, 0);
    EXPECT_EQ(time.range, (Range{2, 4}));
    EXPECT_EQ(time.dt, 2);
    EXPECT_FALSE(time.flagA);
    EXPECT_TRUE(time.flagB);
    EXPECT_EQ(time.maxTsteps(), 1);
}

TEST(VTime, takesEveryFieldFromItsArguments)
{
    const VTime time{1, 2, 3, 4, "a", "b", "c"};
    EXPECT_EQ(time.time, 1);
    EXPECT_EQ(time.range, (Range{2, 3}));
    EXPECT_EQ(time.dt, 4);
    EXPECT_EQ(time.info1, "a");
    EXPECT_EQ(time.info2, "b");
    EXPECT_EQ(time.info3, "c");
    EXPECT_FALSE(time.flagA);
    EXPECT_TRUE(time.flagB);
}

TEST(VTime, copiesItsFlagsButResetsThemInALikeTime)
{
    VTime time{1, 0, 10, 2, "a", "b", "c"};
    time.flagA = true;
    time.flagB = false;
    EXPECT_EQ(VTime(time), time);

    const VTime like{4, time, false};
    EXPECT_EQ(like.time, 4);
    EXPECT_EQ(like.range, time.range);
    EXPECT_EQ(like.dt, 2);
    EXPECT_EQ(like.info1, "a");
    EXPECT_EQ(like.info2, "b");
    EXPECT_EQ(like.info3, "c");
    EXPECT_FALSE(like.flagA);
    EXPECT_TRUE(like.flagB);
}

TEST(VTime, isLimitedOrWrappedToTheIntervalOfALikeTime)
{
    const struct {
        double begin, end, t, limited, cyclic;
    } cases[] = {
        {0, 10, 5, 5, 5},       {0, 10, 0, 0, 0},          {0, 10, 10, 10, 10}, {0, 10, -1, 0, 10}, {0, 10, 11, 10, 0},
        {0, 10, 25, 10, 0},     {10, 0, 5, 0, 0},          {10, 0, -5, 0, 0},   {10, 0, 10, 0, 10}, {10, 0, 15, 0, 10},
        {0, 10, NaN, NaN, NaN}, {0, 10, -infinity, 0, 10}, {NaN, NaN, 5, 5, 5},
    };
    for (const auto& [begin, end, t, limited, cyclic] : cases) {
        SCOPED_TRACE(testing::Message() << t << " in " << begin << " to " << end);
        EXPECT_TRUE(same(VTime(t, stepped(begin, end, 1), false).time, limited));
        EXPECT_TRUE(same(VTime(t, stepped(begin, end, 1), true).time, cyclic));
    }
}

TEST(VTime, isEqualOnlyIfAllFieldsAreEqual)
{
    const VTime time{1, 2, 3, 4, "a", "b", "c"};
    VTime others[] = {time, time, time, time, time, time, time, time, time, time};
    others[1].time = 0;
    others[2].range.begin = 0;
    others[3].range.end = 0;
    others[4].dt = 0;
    others[5].info1 = "";
    others[6].info2 = "";
    others[7].info3 = "";
    others[8].flagA = true;
    others[9].flagB = false;
    for (const VTime& other : others) {
        EXPECT_EQ(other == time, &other == others) << &other - others;
        const auto value = Loam::makeStrong<VValue<VTime>>(other);
        EXPECT_EQ(VValue<VTime>(time).isDifferentFrom(value), &other != others);
    }
    EXPECT_NE(VTime{NaN}, VTime{NaN});
}

// The expected values below were computed independently of this code: by hand or, where
// digits matter, with the doubles of another language.

TEST(VTime, numbersStepsFromItsBeginAndRoundsHalvesUp)
{
    const struct {
        VTime time;
        double t, step;
    } cases[] = {
        {stepped(0, 10, 1), 2.5, 3},
        {stepped(0, 10, 1), -0.5, 0},
        {stepped(0, 10, 1), -0.51, -1},
        {stepped(0, 10, 1), 2.49, 2},
        {stepped(0, 10, 1), 1000, 1000},
        {stepped(2, 4, 2), 3, 1},
        {stepped(-3, 4.5, 0.75), 4.5, 10},
        {stepped(10, 0, -2.5), 6.275, 1},
        {stepped(0, 10, -1), 10, -10},
        {stepped(0, 10, 1), 1e300, 1e300},
        {stepped(0, 10, 1), -1e17, -1e17},
        {stepped(0, 10, 1), NaN, NaN},
        {stepped(0, 10, 1), infinity, infinity},
        {stepped(0, 10, 0), 7, 0},
        {stepped(0, 10, -0.0), 7, 0},
        {stepped(0, 10, NaN), 7, 0},
        {stepped(0, 10, infinity), 7, 0},
        {VTime{3}, 100, 0},
    };
    for (const auto& [time, t, step] : cases)
        EXPECT_TRUE(same(time.Tstep(t), step)) << "step of " << t << " in " << VValueTrait<VTime>::Text(time);
}

TEST(VTime, countsTheStepsOfItsInterval)
{
    const struct {
        VTime time;
        double last;
    } cases[] = {
        {stepped(0, 10, 1), 10},
        {stepped(0, 10, 4), 3},
        {stepped(0, 10, 3), 3},
        {VTime(0, 2, 4), 1},
        {stepped(10, 0, -2.5), 4},
        {stepped(10, 0, 1), -10},
        {stepped(0, 1, 3), 0},
        {stepped(0, 10, 0), 0},
        {stepped(0, 10, NaN), 0},
        {stepped(0, 1, 0.1), 10},
        {stepped(1517356800, 1518048000, 10800), 64},
        {stepped(0, 1, 0.015625), 64},
    };
    for (const auto& [time, last] : cases)
        EXPECT_EQ(time.maxTsteps(), last) << VValueTrait<VTime>::Text(time);
}

TEST(VTime, wrapsStepNumbersIntoTheValidSteps)
{
    const struct {
        VTime time;
        double step, t;
    } cases[] = {
        {stepped(0, 10, 1), 0, 0},
        {stepped(0, 10, 1), 10, 10},
        {stepped(0, 10, 1), 11, 0},
        {stepped(0, 10, 1), 12, 1},
        {stepped(0, 10, 1), 100, 1},
        {stepped(0, 10, 1), 0.5, 0.5},
        {stepped(0, 10, 1), -1, 10},
        {stepped(0, 10, 1), -2.5, 8.5},
        {stepped(0, 10, 1), -10.5, 0.5},
        {stepped(2, 4, 2), 0.5, 3},
        {stepped(2, 4, 2), -1, 4},
        {stepped(-3, 4.5, 0.75), 7, 2.25},
        {stepped(0, 1, 0.1), 7, 0.7000000000000001},
        {stepped(0, 1, 3), 0.5, 1.5},
        {stepped(10, 0, -2.5), 7, 5},
        {stepped(10, 0, 1), 1, 2},
        {stepped(0, 10, -1), 1, 8},
        {stepped(1517356800, 1518048000, 10800), -2.5, 1518031800},
        {stepped(0, 1, 0.015625), 100, 0.546875},
        // Multiplied and then added, each rounded: a fused operation would give 0.6.
        {stepped(0.3, 3, 0.1), 3, 0.6000000000000001},
        // Whole turns are added before the remainder is taken, and that rounds.
        {stepped(0, 2, 1), 0.1, 0.09999999999999964},
        {stepped(0, 10, 1), 1e17, 9},
        // No steps: the remainder of a division by zero.
        {stepped(0, -1, 1), 3, NaN},
        {stepped(0, 10, 1), NaN, NaN},
        {stepped(0, 10, 1), infinity, NaN},
        {stepped(4, 10, 0), 7, 4},
        {stepped(4, 10, NaN), 7, 4},
        {VTime{3}, 7, 3},
    };
    for (const auto& [time, step, t] : cases)
        EXPECT_TRUE(same(time.Tdiscrete(step), t)) << step << " of " << VValueTrait<VTime>::Text(time);
}

TEST(VTime, intentionallyLeavesStepsNegativeBeyondOneTurnBack)
{
    const struct {
        VTime time;
        double step, t;
    } cases[] = {
        {stepped(0, 10, 1), -12, -1},   {stepped(0, 10, 1), -11, 0},     {stepped(0, 2, 1), -5, -2},
        {stepped(0, 2, 1), -3, 0},      {stepped(0, 2, 1), -4, -1},      {stepped(2, 4, 2), -2.5, 1},
        {stepped(0, 1, 3), -2.5, -1.5}, {stepped(10, 0, -2.5), -12, 15},
    };
    for (const auto& [time, step, t] : cases)
        EXPECT_TRUE(same(time.Tdiscrete(step), t)) << step << " of " << VValueTrait<VTime>::Text(time);
}

TEST(VTime, snapsTimesToTheNearestStepAndWrapsThem)
{
    const struct {
        VTime time;
        double t, snapped;
    } cases[] = {
        {stepped(0, 10, 1), 10.4, 10},
        {stepped(0, 10, 1), 10.6, 0},
        {stepped(0, 10, 1), 10.5, 0},
        {stepped(0, 10, 1), 2.5, 3},
        {stepped(0, 10, 1), -0.5, 0},
        {stepped(0, 10, 1), -1, 10},
        {stepped(0, 10, 1), -12, -1},
        {stepped(0, 0.3, 0.1), 0.3, 0.30000000000000004},
        {stepped(-3, 4.5, 0.75), -2.775, -3},
        {stepped(-3, 4.5, 0.75), 4.95, -3},
        {stepped(10, 0, -2.5), -1.5, 10},
        {stepped(10, 0, 1), 0, 9},
        {stepped(1517356800, 1518048000, 10800), 1518054480, 1517356800},
        {stepped(0.3, 3, 0.1), 0.6, 0.6000000000000001},
        {stepped(0, 10, 0), 7.3, 7.3},
        {stepped(0, 10, NaN), 7.3, 7.3},
        {VTime{3}, 7.3, 7.3},
        {stepped(0, 10, 1), NaN, NaN},
    };
    for (const auto& [time, t, snapped] : cases)
        EXPECT_TRUE(same(time.Tdiscretized(t), snapped)) << t << " in " << VValueTrait<VTime>::Text(time);
}

TEST(VTime, stepsForwardAndBackAndWrapsAround)
{
    const struct {
        VTime time;
        double next, previous;
    } cases[] = {
        {stepped(0, 10, 1, 3), 4, 2},
        {stepped(0, 10, 1, 10), 0, 9},
        {stepped(0, 10, 1, 0), 1, 10},
        {stepped(0, 10, 1, 3.4), 4, 2},
        {stepped(0, 10, 1, 3.5), 5, 3},
        {VTime(2, 2, 4), 4, 4},
        {VTime(4, 2, 4), 2, 2},
        {stepped(0, 1, 0.1, 1), 0, 0.9},
        {stepped(0, 1, 3, 0.9), 0, 0},
        {stepped(0, 0.3, 0.1), 0.1, 0.30000000000000004},
        {stepped(10, 0, -2.5, 0), 10, 2.5},
        {stepped(10, 0, 1, 10), 2, 9},
        {stepped(1517356800, 1518048000, 10800, 1518048000), 1517356800, 1518037200},
        {stepped(4, 10, 0, 7), 4, 4},
        {stepped(4, 10, NaN, 7), 4, 4},
        {VTime{3}, 3, 3},
        {stepped(0, 10, 1, NaN), NaN, NaN},
    };
    for (const auto& [time, next, previous] : cases) {
        SCOPED_TRACE(VValueTrait<VTime>::Text(time));
        VTime on(time);
        EXPECT_EQ(&on++, &on) << "the result is the time itself, already advanced";
        EXPECT_TRUE(same(on.time, next));
        VTime back(time);
        EXPECT_EQ(&back--, &back);
        EXPECT_TRUE(same(back.time, previous));
        back.time = time.time;
        if (!std::isnan(time.time) && !std::isnan(time.dt)) {
            EXPECT_EQ(back, time) << "nothing but the time has changed";
        }
    }
}

TEST(VTime, visitsEveryStepOncePerTurn)
{
    VTime time = stepped(0, 1, 0.015625);
    for (int turn = 0; turn < 2; ++turn) {
        for (int step = 0; step <= 64; ++step) {
            EXPECT_EQ(time.time, step / 64.0);
            time++;
        }
    }
    for (int step = 64; step >= 0; --step) {
        time--;
        EXPECT_EQ(time.time, step / 64.0);
    }
}

TEST(VTime, writesOnlyItsTimeIntervalAndStep)
{
    EXPECT_EQ(VValueTrait<VTime>::Text(VTime{3}), "3[3,3]@0");
    EXPECT_EQ(VValueTrait<VTime>::Text(VTime(0.5, -1, 1e300, 0.015625, "a", "b", "c")), "0.5[-1,1e+300]@0.015625");
    // The longest possible numbers.
    const double longest = -std::numeric_limits<double>::min();
    const std::string text = "-2.2250738585072014e-308";
    EXPECT_EQ(VValueTrait<VTime>::Text(stepped(longest, longest, longest, longest)),
              text + "[" + text + "," + text + "]@" + text);
}

TEST(VTime, readsItsTextForm)
{
    const struct {
        const char* text;
        double time, begin, end, dt;
    } cases[] = {
        {"5[0,10]@1", 5, 0, 10, 1},
        {" 5 [ 0 , 10 ] @ 1 ", 5, 0, 10, 1},
        {"-0.5[-1e3,nan]@0.25", -0.5, -1000, NaN, 0.25},
        {"5[0,10]", 5, 0, 10, 10},
        {"5[0,10]@", 5, 0, 10, 10},
        {"5[2,]", 5, 2, 7, 5}, // no number after the comma: the end is unchanged
    };
    for (const auto& [text, time, begin, end, dt] : cases) {
        SCOPED_TRACE(text);
        VTime read{6, 6, 7, 8, "a", "b", "c"};
        read.flagA = true;
        EXPECT_TRUE(VValueTrait<VTime>::setValueFromText(read, text));
        EXPECT_TRUE(same(read.time, time));
        EXPECT_TRUE(same(read.range.begin, begin));
        EXPECT_TRUE(same(read.range.end, end));
        EXPECT_TRUE(same(read.dt, dt));
        EXPECT_EQ(read.info1 + read.info2 + read.info3, "abc");
        EXPECT_TRUE(read.flagA);
    }
}

TEST(VTime, intentionallyReadsAfterThePreviousSeparatorIfOneIsMissing)
{
    const struct {
        const char* text;
        double time, begin, end, dt;
    } cases[] = {
        {"5", 5, 5, 5, 5},
        {"5@2", 5, 5, 5, 2},
        {"5,7", 5, 5, 7, 7},
        {"5,7]", 5, 5, 7, 2},
        {"5]@3", 5, 5, 5, 3},
        {"5[", 5, 5, 5, 0},
        {"5[0", 5, 0, 0, 0},
        {"5[3", 5, 3, 3, 3},
        {"5[3@2", 5, 3, 3, 2},
        {"5[3]", 5, 3, 3, 0},
        {"5[3]@2", 5, 3, 3, 2},
        {"5[0,", 5, 0, 0, 0},
        {"5[0,10", 5, 0, 10, 10},
        {"5[2,10]7", 5, 2, 10, 7},
        {"5[0,10@3", 5, 0, 10, 3},
        {"5,1[0,10]@1", 5, 0, 10, 1}, // the comma before the bracket does not belong to a number
        {"5[0,10]@1]@2", 5, 0, 10, 1},
        {"5[1[2,3]@4", 5, 1, 3, 4},
    };
    for (const auto& [text, time, begin, end, dt] : cases) {
        SCOPED_TRACE(text);
        VTime read{6, 6, 7, 8, "", "", ""};
        EXPECT_TRUE(VValueTrait<VTime>::setValueFromText(read, text));
        EXPECT_EQ(VValueTrait<VTime>::Text(read), VValueTrait<VTime>::Text(stepped(begin, end, dt, time)));
    }
}

TEST(VTime, intentionallyKeepsFieldsAfterTheTimeThatCannotBeRead)
{
    const struct {
        const char* text;
        const char* left;
    } cases[] = {
        {"5[x,10]@1", "5[6,10]@1"}, {"5[0,x]@1", "5[0,7]@1"}, {"5[0,10]@x", "5[0,10]@8"},
        {"5[x", "5[6,7]@8"},        {"5[,]@", "5[6,7]@1"},    {"5[x,y]@z", "5[6,7]@8"},
    };
    for (const auto& [text, left] : cases) {
        SCOPED_TRACE(text);
        VTime read{9, 6, 7, 8, "", "", ""};
        EXPECT_TRUE(VValueTrait<VTime>::setValueFromText(read, text));
        EXPECT_EQ(VValueTrait<VTime>::Text(read), left);
    }
}

TEST(VTime, refusesTextThatDoesNotBeginWithANumber)
{
    const VTime before{9, 6, 7, 8, "a", "b", "c"};
    for (const char* text : {"", " ", "x[0,1]@1", "[0,1]@1", "@5", "noon"}) {
        SCOPED_TRACE(text);
        VTime read(before);
        EXPECT_FALSE(VValueTrait<VTime>::setValueFromText(read, text));
        EXPECT_EQ(read, before);
    }
}

} // namespace VTimeTest
