#include <tarn/study/Sweep.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace SweepTest {

using Tarn::Sweep;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Texts = std::vector<std::string>;

TEST(Sweep, hasOneCaseWithoutFactors)
{
    const Sweep sweep;
    EXPECT_EQ(sweep.caseCount(), 1u);
    EXPECT_THAT(sweep.inputs(), IsEmpty());
    EXPECT_THAT(sweep.texts(0), IsEmpty());
}

TEST(Sweep, combinesItsFactorsAndVariesTheLastOneFastest)
{
    Sweep sweep;
    EXPECT_TRUE(sweep.add("a.x", {"1", "2"}));
    EXPECT_TRUE(sweep.addRows({"b.y", "b.z"}, {{"p", "q"}, {"r", "s"}, {"t", "u"}}));
    EXPECT_THAT(sweep.inputs(), ElementsAre("a.x", "b.y", "b.z"));
    ASSERT_EQ(sweep.caseCount(), 6u);
    EXPECT_THAT(sweep.texts(0), ElementsAre("1", "p", "q"));
    EXPECT_THAT(sweep.texts(1), ElementsAre("1", "r", "s"));
    EXPECT_THAT(sweep.texts(3), ElementsAre("2", "p", "q"));
    EXPECT_THAT(sweep.texts(5), ElementsAre("2", "t", "u"));
}

TEST(Sweep, refusesAnInputTwice)
{
    Sweep sweep;
    EXPECT_TRUE(sweep.add("a.x", {"1"}));
    EXPECT_EQ(sweep.add("a.x", {"2"}).reason(), "the input \"a.x\" is varied twice");
    EXPECT_EQ(sweep.addRows({"b", "b"}, {{"1", "2"}}).reason(), "the input \"b\" is varied twice");
}

TEST(Sweep, refusesFactorsWithoutInputsOrTexts)
{
    Sweep sweep;
    EXPECT_EQ(sweep.add("a.x", {}).reason(), "found no texts, expected one per case");
    EXPECT_EQ(sweep.addRows({}, {{}}).reason(), "found no inputs, expected one or more");
    EXPECT_EQ(sweep.addRows({"a", "b"}, {{"1", "2"}, {"3"}}).reason(),
              "found 1 text in row 2, expected one per input, 2");
}

TEST(Sweep, refusesTooManyCasesAndStaysUnchanged)
{
    Sweep sweep;
    EXPECT_TRUE(sweep.add("a", Texts(1000, "1")));
    EXPECT_TRUE(sweep.add("b", Texts(1000, "1")));
    EXPECT_THAT(sweep.add("c", Texts(1000, "1")).reason(),
                HasSubstr("at most 10000000 cases, found 1000000 times 1000"));
    EXPECT_EQ(sweep.caseCount(), 1'000'000u);
    EXPECT_THAT(sweep.inputs(), ElementsAre("a", "b"));
    EXPECT_TRUE(sweep.add("c", Texts(10, "1")));
    EXPECT_EQ(sweep.caseCount(), Sweep::MostCases);
    EXPECT_FALSE(sweep.add("d", Texts(2, "1")));
}

} // namespace SweepTest
