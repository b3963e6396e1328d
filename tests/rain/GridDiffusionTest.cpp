#include "Grids.hpp"
#include "earth/Evaluation.hpp"

#include <rain/Diffusion.hpp>

#include <fathom/VTime.hpp>

#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <vector>

namespace GridDiffusionTest {

using Rain::Grid;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string start = "6x3 -180,30 60,-30: 10,0,0,40,0,5,0,100,,0,0,0,7,3,0,30,2,2";

Orla::VTime at(double time)
{
    return Orla::VTime{time, 0, 1};
}

class GridDiffusionTest : public testing::Test {
protected:
    GridDiffusionTest()
    {
        diffusion.setText("grid", start);
        diffusion.setText("range", "0:10");
        diffusion.setText("diffusivity", "400000");
    }

    Grid after(double time)
    {
        diffusion.set("time", at(time));
        EXPECT_EQ(diffusion.run().failures, 0u);
        return diffusion.value<Grid>("grid");
    }

    static Grid expected(int steps, double amount)
    {
        const Grid grid = gridOf(start);
        std::vector<double> values(grid.values()->begin(), grid.values()->end());
        for (int i = 0; i < steps; ++i)
            Rain::Diffusion{grid, amount}.advance(values);
        return Grid{grid.frame(), values};
    }

    Evaluation diffusion{"GridDiffusion"};
};

} // namespace

TEST_F(GridDiffusionTest, advancesFromTheGridInThePool)
{
    EXPECT_EQ(after(0), gridOf(start));
    EXPECT_EQ(after(0.3), expected(3, 4e5));
    EXPECT_EQ(diffusion.text("days"), "3");
    EXPECT_EQ(diffusion.text("note"), "3 days of diffusion at 400000 km\u00b2 per day");

    // The steps so far are not computed again: the pool's grid is the beginning of the next step.
    const auto output = diffusion.object->findOutput("grid")->getValueBase(diffusion.pool);
    const Grid other = gridOf("6x3 -180,30 60,-30: 1,1,1,1,1,1,1,1,,1,1,1,1,1,1,1,1,1");
    Orla::VTypedValueBase<Grid>::cast(output.get())->setValue(other);
    const Grid later = after(0.5);
    for (const std::size_t column : {0u, 3u, 5u})
        EXPECT_NEAR(later.at(column, 0), 1, 1e-12);
}

TEST_F(GridDiffusionTest, dependsOnTheTimeOnlyNotOnTheWayToIt)
{
    const Grid whole = after(1);
    EXPECT_EQ(whole, expected(10, 4e5));
    EXPECT_EQ(after(0.4), expected(4, 4e5)) << "back";
    EXPECT_EQ(after(0), gridOf(start));
    for (const double time : {0.1, 0.25, 0.5, 0.55, 0.9, 1.0})
        after(time);
    EXPECT_EQ(diffusion.value<Grid>("grid"), whole);
}

TEST_F(GridDiffusionTest, advancesByWholeSteps)
{
    EXPECT_EQ(after(0.39), expected(3, 4e5));
    EXPECT_EQ(after(0.7), expected(7, 4e5)) << "0.7 * 10 is slightly less than 7";
    diffusion.setText("step", "0.5");
    EXPECT_EQ(after(0.39), expected(7, 2e5));
    EXPECT_EQ(diffusion.text("days"), "3.5");
}

TEST_F(GridDiffusionTest, beginsAgainWhenItsInputsChange)
{
    after(0.5);
    diffusion.setText("diffusivity", "100000");
    EXPECT_EQ(after(0.5), expected(5, 1e5));
    diffusion.setText("grid", "2x1 0,0 1,1: 1,1");
    EXPECT_EQ(after(0.6), gridOf("2x1 0,0 1,1: 1,1"));
    diffusion.setText("grid", start);
    EXPECT_EQ(after(0.6), expected(6, 1e5));
}

TEST_F(GridDiffusionTest, isTheInputBeforeTheStart)
{
    diffusion.setText("range", "-5:5");
    EXPECT_EQ(after(0.2), gridOf(start));
    EXPECT_EQ(diffusion.text("days"), "0");
    EXPECT_EQ(after(0.8), expected(3, 4e5));
}

TEST_F(GridDiffusionTest, keepsPoolsApart)
{
    after(0.5);
    const Orla::StrongPtr<Orla::ValuePool> other{new Orla::ValuePool("other")};
    writeText(*diffusion.object, "grid", other, start);
    writeText(*diffusion.object, "range", other, "0:10");
    writeText(*diffusion.object, "diffusivity", other, "100000");
    write(*diffusion.object, "time", other, at(0.2));
    Orla::VScheduler::schedule(diffusion.object, 0, other);
    EXPECT_EQ(Orla::VScheduler::run(other).failures, 0u);
    EXPECT_EQ(readText(*diffusion.object, "grid", other), Orla::VValueTrait<Grid>::Text(expected(2, 1e5)));
    EXPECT_EQ(after(0.6), expected(6, 4e5));
}

TEST_F(GridDiffusionTest, staysDueWhenItIsCancelled)
{
    after(0.2);
    int reports = 0;
    Orla::VCancellation cancellation;
    const auto cancelSoon = [&](double) {
        if (++reports == 3)
            cancellation.cancel();
    };
    Orla::VRequest request{diffusion.pool, cancelSoon, cancellation};
    diffusion.set("time", at(1));
    EXPECT_EQ(Orla::VScheduler::run(request).outcome, Orla::VScheduler::Outcome::Cancelled);
    EXPECT_EQ(reports, 3) << "the work continued";
    EXPECT_EQ(diffusion.value<Grid>("grid"), expected(2, 4e5));
    EXPECT_EQ(diffusion.run().outcome, Orla::VScheduler::Outcome::Done);
    EXPECT_EQ(diffusion.value<Grid>("grid"), expected(10, 4e5));
}

TEST_F(GridDiffusionTest, failsWithInvalidInputsAndKeepsItsGrid)
{
    after(0.2);
    const struct {
        const char* input;
        const char* text;
        const char* valid;
        const char* message;
    } cases[] = {
        {"diffusivity", "0", "400000", "the input \"diffusivity\" is 0, expected a positive number"},
        {"diffusivity", "nan", "400000", "the input \"diffusivity\" is nan, expected a positive number"},
        {"step", "-1", "1", "the input \"step\" is -1, expected a positive number"},
        {"step", "inf", "1", "the input \"step\" is inf, expected a positive number"},
        {"range", "0:1e300", "0:10", "days in steps of 1 days, expected at most 1000000000 steps"},
        {"range", "nan:nan", "0:10", "found nan days in steps of 1 days"},
    };
    for (const auto& [input, text, valid, message] : cases) {
        SCOPED_TRACE(text);
        const Warnings warnings;
        diffusion.setText(input, text);
        EXPECT_EQ(diffusion.run().failures, 1u);
        EXPECT_THAT(warnings.all(), ElementsAre(HasSubstr(message)));
        EXPECT_EQ(diffusion.value<Grid>("grid"), expected(2, 4e5));
        diffusion.setText(input, valid);
        EXPECT_EQ(diffusion.run().failures, 0u);
        EXPECT_EQ(diffusion.value<Grid>("grid"), expected(2, 4e5));
    }
}

TEST_F(GridDiffusionTest, keepsTheGridWithoutCells)
{
    diffusion.setText("grid", "");
    EXPECT_TRUE(after(1).empty());
}

} // namespace GridDiffusionTest
