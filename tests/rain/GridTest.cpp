#include <rain/Grid.hpp>

#include "Grids.hpp"
#include "support/SlotLaws.hpp"
#include "support/ValueLaws.hpp"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

template<>
std::vector<Rain::Grid> samples<Rain::Grid>()
{
    using Rain::Grid;
    return {Grid{}, Grid{{1, 1, -180, 87, 1, -1}, {0.1}},
            Grid{{3, 2, 10.5, -90, 120, 180}, {1, 2, Rain::missing, 4, -5, 1e300}},
            Grid{{2, 1, 0, 0, 1, 1}, {Rain::missing, Rain::missing}}};
}

namespace GridTest {

using Rain::Grid;
using Rain::GridFrame;
using Rain::missing;

INSTANTIATE_TYPED_TEST_SUITE_P(Grid, ValueLaws, Grid);
INSTANTIATE_TYPED_TEST_SUITE_P(Grid, SlotLaws, Grid);

TEST(GridFrame, givesThePlacesOfCellsAndBetweenThem)
{
    const GridFrame frame{360, 168, -180, 87, 1, -1};
    EXPECT_EQ(frame.longitudeAt(0), -180);
    EXPECT_EQ(frame.longitudeAt(359.5), 179.5);
    EXPECT_EQ(frame.latitudeAt(167), -80);
    EXPECT_EQ(frame.cells(), 60480u);
}

TEST(GridFrame, knowsWhetherItsColumnsGoAroundTheEarth)
{
    EXPECT_TRUE((GridFrame{360, 168, -180, 87, 1, -1}.isWholeTurn()));
    EXPECT_TRUE((GridFrame{7, 1, 0, 0, 360.0 / 7, 1}.isWholeTurn()));
    EXPECT_FALSE((GridFrame{359, 168, -180, 87, 1, -1}.isWholeTurn()));
    EXPECT_FALSE(GridFrame{}.isWholeTurn());
}

TEST(GridFrame, isValidOnTheEarthOnly)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE((GridFrame{3600, 1801, -180, 90, 0.1, -0.1}.isValid()));
    EXPECT_TRUE((GridFrame{1, 1, 360, -90, 360, 5}.isValid()));
    const GridFrame invalid[] = {{},
                                 {1, 0, 0, 0, 1, 1},
                                 {361, 1, 0, 0, 1, 1},
                                 {2, 2, 0, 89.5, 1, 1},
                                 {2, 2, 0, -89.5, 1, -1},
                                 {2, 1, 0, 90.5, 1, -1},
                                 {2, 2, 361, 0, 1, 1},
                                 {2, 2, 0, 0, 0, 1},
                                 {2, 2, 0, 0, -1, 1},
                                 {2, 2, 0, 0, 1, 0},
                                 {2, 2, missing, 0, 1, 1},
                                 {2, 2, 0, missing, 1, 1},
                                 {2, 2, 0, 0, missing, 1},
                                 {2, 2, 0, 0, 1, missing},
                                 {1, 1, 0, 0, infinity, 1},
                                 {GridFrame::mostCells, 2, 0, 0, 1e-9, 1e-9},
                                 {2, std::numeric_limits<std::size_t>::max() / 2 + 1, 0, 0, 1, 1e-30}};
    for (const GridFrame& frame : invalid)
        EXPECT_FALSE(frame.isValid()) << frame.columns << 'x' << frame.rows << ' ' << frame.longitude << ','
                                      << frame.latitude << ' ' << frame.eastStep << ',' << frame.northStep;
}

TEST(Grid, hasOneValuePerCellRowByRow)
{
    const Grid grid{{3, 2, 0, 0, 1, -1}, {1, 2, 3, 4, 5, 6}};
    EXPECT_EQ(grid.at(2, 0), 3);
    EXPECT_EQ(grid.at(0, 1), 4);
    EXPECT_EQ(grid.values()->size(), 6u);
}

TEST(Grid, countsNumbersThatAreNotFiniteAsMissing)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const Grid grid{{3, 1, 0, 0, 1, -1}, {infinity, -missing, -infinity}};
    EXPECT_TRUE(std::isnan(grid.at(0, 0)));
    EXPECT_EQ(grid, (Grid{{3, 1, 0, 0, 1, -1}, {missing, missing, missing}}));
}

TEST(Grid, isEqualOnlyIfPlacesAndValuesAre)
{
    const Grid grid = gridOf("2x1 0,0 1,1: 1,");
    EXPECT_EQ(grid, gridOf("2x1 0,0 1,1: 1,"));
    EXPECT_EQ(gridOf("1x1 0,0 1,1: 0"), gridOf("1x1 0,0 1,1: -0"));
    for (const char* other : {"2x1 0,0 1,1: 1,0", "2x1 0,0 1,1: 2,", "1x2 0,0 1,1: 1,", "2x1 1,0 1,1: 1,",
                              "2x1 0,1 1,1: 1,", "2x1 0,0 2,1: 1,", "2x1 0,0 1,2: 1,", ""})
        EXPECT_NE(grid, gridOf(other));
}

TEST(Grid, sharesItsValuesWithItsCopies)
{
    const Grid grid = gridOf("2x1 0,0 1,1: 1,2");
    const Grid copy = grid;
    EXPECT_EQ(copy.values(), grid.values());
}

TEST(Grid, isWrittenWithItsPlacesAndEmptyMissingValues)
{
    EXPECT_EQ(Orla::VValueTrait<Grid>::Text(Grid{{3, 2, -180, 87, 1, -1}, {392, 392.5, missing, 12, 0, 7}}),
              "3x2 -180,87 1,-1: 392,392.5,,12,0,7");
}

TEST(Grid, refusesInvalidTextsAndStaysUnchanged)
{
    for (const char* text : {"x", "2x1", "2x1 0,0 1,1", "2x1 0,0 1,1: 1", "2x1 0,0 1,1: 1,2,3", "2x1 0,0 1,1: 1,x",
                             "2x1 0,0 1,1: 1;2", "2x1 0,0 1,1: 1,inf", "2x1 0,0 1,1: 1,nan", "2x1 0,0 -1,1: 1,2",
                             "2x1 0,91 1,1: 1,2", "0x0 0,0 1,1:", "1.5x1 0,0 1,1: 1", "-1x-1 0,0 1,1: 1",
                             "99999999999x1 0,0 1,1: 1", "4096x4096 0,0 0.01,0.01: 1", "2x1 0,0 1,1: 1,2 "}) {
        SCOPED_TRACE(text);
        Grid grid = gridOf("1x1 0,0 1,1: 5");
        EXPECT_FALSE(Orla::VValueTrait<Grid>::setValueFromText(grid, text));
        EXPECT_EQ(grid, gridOf("1x1 0,0 1,1: 5"));
    }
}

} // namespace GridTest
