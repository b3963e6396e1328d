#include <rain/Squares.hpp>

#include "Grids.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace SquaresTest {

using Rain::Squares;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

using Place = std::pair<double, double>; // column, row

Place placeOf(const Squares::Vertex& vertex)
{
    return {vertex.column, vertex.row};
}

// Returns the isolines of the only square of a grid.
std::vector<std::pair<Place, Place>> linesOf(const std::string& values, double level)
{
    std::vector<std::pair<Place, Place>> lines;
    for (const Squares::Edge& edge : Squares{gridOf("2x2 0,1 1,-1: " + values), level}.partOf(0, 0)) {
        if (edge.side == Squares::Edge::isoline)
            lines.emplace_back(placeOf(edge.from), placeOf(edge.to));
    }
    return lines;
}

} // namespace

TEST(Squares, interpolateLinearlyAlongTheSides)
{
    EXPECT_THAT(linesOf("0,0,10,10", 2.5), ElementsAre(Pair(Place(0, 0.25), Place(1, 0.25))));
    EXPECT_THAT(linesOf("0,10,0,10", 2.5), ElementsAre(Pair(Place(0.25, 1), Place(0.25, 0))));
    EXPECT_THAT(linesOf("10,0,0,0", 5), ElementsAre(Pair(Place(0.5, 0), Place(0, 0.5))));
    EXPECT_THAT(linesOf("0,4,4,4", 1), ElementsAre(Pair(Place(0, 0.25), Place(0.25, 0))));
}

TEST(Squares, haveNoLineIfAllCornersOrNoneReachTheLevel)
{
    EXPECT_THAT(linesOf("5,6,7,8", 5), IsEmpty());
    EXPECT_THAT(linesOf("5,6,7,8", 8.1), IsEmpty());
    EXPECT_EQ((Squares{gridOf("2x2 0,1 1,-1: 5,6,7,8"), 5}.partOf(0, 0).count), 4u) << "the whole square";
    EXPECT_EQ((Squares{gridOf("2x2 0,1 1,-1: 5,6,7,8"), 9}.partOf(0, 0).count), 0u);
}

TEST(Squares, connectHighCornersOfASaddleIfTheirMeanReachesTheLevel)
{
    // The mean is 5.
    EXPECT_THAT(linesOf("10,0,0,10", 4),
                UnorderedElementsAre(Pair(Place(0.6, 0), Place(1, 0.4)), Pair(Place(0.4, 1), Place(0, 0.6))));
    EXPECT_THAT(linesOf("10,0,0,10", 6),
                UnorderedElementsAre(Pair(Place(0.4, 0), Place(0, 0.4)), Pair(Place(0.6, 1), Place(1, 0.6))));
    EXPECT_THAT(linesOf("0,10,10,0", 4),
                UnorderedElementsAre(Pair(Place(0, 0.4), Place(0.4, 0)), Pair(Place(1, 0.6), Place(0.6, 1))));
    EXPECT_THAT(linesOf("10,0,0,10", 5).size(), 2u);
    EXPECT_THAT(linesOf("10,0,0,10", 5)[0], Pair(Place(0.5, 0), Place(1, 0.5))) << "equal to the mean: connected";
}

TEST(Squares, keepCrossingsAwayFromTheCorners)
{
    const Squares squares{gridOf("2x2 0,1 1,-1: 5,0,0,0"), 5, 0.01};
    EXPECT_EQ(placeOf(squares.partOf(0, 0).edges[0].to), Place(0.01, 0));
}

TEST(Squares, lieBetweenTheLastColumnAndTheFirstAroundTheEarth)
{
    const Squares around{gridOf("4x2 0,1 90,-1: 1,1,1,9,1,1,1,9"), 5};
    EXPECT_EQ(around.columns(), 4u);
    const Squares::Edges last = around.partOf(3, 0);
    ASSERT_EQ(last.count, 4u);
    EXPECT_EQ(placeOf(last.edges[1].from), Place(3.5, 0));
    EXPECT_EQ(placeOf(last.edges[1].to), Place(3.5, 1));
    // Corners of the last square are those of the first column.
    EXPECT_TRUE(around.hasValues(3, 0));
    EXPECT_EQ((Squares{gridOf("4x2 0,1 80,-1: 1,1,1,9,1,1,1,9"), 5}.columns()), 3u);
}

TEST(Squares, shareTheirVerticesWithTheirNeighbours)
{
    const Squares squares{precipitation(), 1000.5};
    int shared = 0;
    for (std::size_t row = 60; row < 100; ++row) {
        for (const std::size_t column : {100u, 359u}) {
            for (const Squares::Edge& edge : squares.partOf(column, row)) {
                if (edge.side != 1)
                    continue;
                const Squares::Edges next = squares.partOf((column + 1) % 360, row);
                const auto opposite =
                    std::find_if(next.begin(), next.end(), [](const Squares::Edge& other) { return other.side == 3; });
                ASSERT_NE(opposite, next.end());
                EXPECT_EQ(edge.from.id, opposite->to.id);
                EXPECT_EQ(edge.to.id, opposite->from.id);
                EXPECT_EQ(edge.to.row, opposite->from.row);
                ++shared;
            }
        }
    }
    EXPECT_GT(shared, 40);
}

TEST(Squares, areLeftOutAtMissingValuesAndBeyondTheGrid)
{
    const Squares squares{gridOf("3x3 0,1 1,-1: 1,1,1,1,1,1,1,1,"), 0};
    EXPECT_TRUE(squares.hasValues(0, 0));
    EXPECT_TRUE(squares.hasValues(0, 1));
    EXPECT_FALSE(squares.hasValues(1, 1));
    EXPECT_FALSE(squares.hasValues(2, 0));
    EXPECT_FALSE(squares.hasValues(0, 2));
}

TEST(Squares, needNeighbouringCells)
{
    for (const char* text :
         {"", "1x1 0,0 1,1: 1", "3x1 0,0 1,1: 1,2,3", "1x3 0,0 1,1: 1,2,3", "2x2 0,0 180,1: 1,2,3,4"}) {
        const Squares squares{gridOf(text), 1.5};
        EXPECT_FALSE(squares.hasValues(0, 0)) << text;
    }
}

} // namespace SquaresTest
