#include <rain/Isolines.hpp>

#include "Grids.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <locale>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace IsolinesTest {

using Earth::LonLat;
using Rain::Grid;
using Rain::Isoline;
using Rain::isolinesOf;
using Rain::lengthOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Place = std::pair<double, double>;

std::vector<Place> placesOf(const Isoline& line)
{
    std::vector<Place> places;
    for (const LonLat& place : line.places)
        places.emplace_back(place.longitude, place.latitude);
    return places;
}

Grid withMissing(const Grid& grid, std::size_t step)
{
    std::vector<double> values(grid.values()->begin(), grid.values()->end());
    for (std::size_t i = 0; step != 0 && i < values.size(); ++i) {
        if ((7 * (i % grid.frame().columns) + 13 * (i / grid.frame().columns)) % step == 0)
            values[i] = Rain::missing;
    }
    return Grid{grid.frame(), values};
}

// Returns the places on the lines between neighbouring cells, around the date line too, where
// the values cross a level. Searches each line by bisection.
std::vector<Place> crossingsOf(const Grid& grid, double level)
{
    const Rain::GridFrame& frame = grid.frame();
    std::vector<Place> places;
    const auto search = [&](std::size_t column, std::size_t row, bool isAlongRow) {
        const double from = grid.at(column, row);
        const double to = isAlongRow ? grid.at((column + 1) % frame.columns, row) : grid.at(column, row + 1);
        if ((from < level) == (to < level))
            return;
        double low = 0;
        double high = 1;
        for (int i = 0; i < 60; ++i) {
            const double middle = (low + high) / 2;
            ((from + (to - from) * middle < level) == (from < level) ? low : high) = middle;
        }
        const double across = static_cast<double>(column) + (isAlongRow ? low : 0);
        const double down = static_cast<double>(row) + (isAlongRow ? 0 : low);
        places.emplace_back(frame.longitudeAt(across), frame.latitudeAt(down));
    };
    for (std::size_t row = 0; row < frame.rows; ++row) {
        for (std::size_t column = 0; column < frame.columns; ++column) {
            search(column, row, true);
            if (row + 1 < frame.rows)
                search(column, row, false);
        }
    }
    return places;
}

} // namespace

TEST(Isolines, haveTheNumbersAndLengthsOfIndependentlyComputedOnes)
{
    std::ifstream file{EXPECTED_ISOLINES};
    int rows = 0;
    for (std::string row; std::getline(file, row);) {
        if (row.starts_with('#'))
            continue;
        SCOPED_TRACE(row);
        std::ranges::replace(row, ',', ' ');
        std::istringstream stream{row};
        stream.imbue(std::locale::classic());
        std::size_t step = 0;
        double level = 0;
        std::ptrdiff_t closed = 0;
        std::ptrdiff_t open = 0;
        double length = 0;
        ASSERT_TRUE(stream >> step >> level >> closed >> open >> length);
        const std::vector<Isoline> lines = isolinesOf(withMissing(precipitation(), step), level);
        EXPECT_EQ(std::ranges::count(lines, true, &Isoline::isClosed), closed);
        EXPECT_EQ(std::ranges::count(lines, false, &Isoline::isClosed), open);
        double sum = 0;
        for (const Isoline& line : lines)
            sum += lengthOf(line.places);
        EXPECT_NEAR(sum, length, 1e-5);
        ++rows;
    }
    EXPECT_EQ(rows, 6);
}

TEST(Isolines, passThroughAllCrossingsBetweenCellsAndNoOtherPlaces)
{
    for (const double level : {100.5, 1000.5, 4000.5}) {
        SCOPED_TRACE(level);
        std::vector<Place> expected = crossingsOf(precipitation(), level);
        std::vector<Place> found;
        for (const Isoline& line : isolinesOf(precipitation(), level)) {
            const std::vector<Place> places = placesOf(line);
            found.insert(found.end(), places.begin(), places.end() - (line.isClosed ? 1 : 0));
        }
        ASSERT_EQ(found.size(), expected.size());
        EXPECT_GT(found.size(), 1000u);
        // Crossings on one line between cells may differ by rounding, which changes their order.
        const auto rounded = [](std::vector<Place>& places) {
            for (Place& place : places)
                place = {std::round(place.first * 1e9), std::round(place.second * 1e9)};
            std::ranges::sort(places);
        };
        rounded(found);
        rounded(expected);
        std::size_t different = 0;
        for (std::size_t i = 0; i < found.size(); ++i)
            different +=
                std::abs(found[i].first - expected[i].first) + std::abs(found[i].second - expected[i].second) > 2;
        EXPECT_EQ(different, 0u);
    }
}

TEST(Isolines, areClosedAroundACell)
{
    const std::vector<Isoline> lines = isolinesOf(gridOf("3x3 0,1 1,-1: 0,0,0,0,10,0,0,0,0"), 2.5);
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_TRUE(lines[0].isClosed);
    EXPECT_EQ(lines[0].level, 2.5);
    EXPECT_EQ(lines[0].places.front(), lines[0].places.back());
    EXPECT_THAT(lines[0].places, SizeIs(5));
    for (const LonLat& place : lines[0].places)
        EXPECT_NEAR(std::abs(place.longitude - 1) + std::abs(place.latitude), 0.75, 1e-12);
}

TEST(Isolines, areOpenAtTheBorderOfTheGridAndAtMissingValues)
{
    const std::vector<Isoline> border = isolinesOf(gridOf("3x3 0,1 1,-1: 0,0,0,10,10,10,10,10,10"), 5);
    ASSERT_THAT(border, SizeIs(1));
    EXPECT_FALSE(border[0].isClosed);
    EXPECT_THAT(placesOf(border[0]), ElementsAre(Place(0, 0.5), Place(1, 0.5), Place(2, 0.5)))
        << "the higher values are on the right";
    const std::vector<Isoline> gap = isolinesOf(gridOf("5x2 0,1 1,-1: 0,0,,0,0,10,10,10,10,10"), 5);
    ASSERT_THAT(gap, SizeIs(2));
    EXPECT_THAT(placesOf(gap[0]), ElementsAre(Place(0, 0.5), Place(1, 0.5)));
    EXPECT_THAT(placesOf(gap[1]), ElementsAre(Place(3, 0.5), Place(4, 0.5)));
}

TEST(Isolines, goAroundTheEarthAndCloseAtTheDateLine)
{
    const std::vector<Isoline> around = isolinesOf(gridOf("4x2 -180,1 90,-1: 0,0,0,0,10,10,10,10"), 5);
    ASSERT_THAT(around, SizeIs(1));
    EXPECT_TRUE(around[0].isClosed);
    EXPECT_THAT(placesOf(around[0]),
                ElementsAre(Place(-180, 0.5), Place(-90, 0.5), Place(0, 0.5), Place(90, 0.5), Place(-180, 0.5)));
    // A wet cell in the first column: its line lies on both sides of the date line.
    const std::vector<Isoline> cell = isolinesOf(gridOf("4x3 -180,10 90,-10: 0,0,0,0,10,0,0,0,0,0,0,0"), 5);
    ASSERT_THAT(cell, SizeIs(1));
    EXPECT_TRUE(cell[0].isClosed);
    EXPECT_THAT(placesOf(cell[0]), testing::UnorderedElementsAre(Place(-180, 5), Place(-135, 0), Place(-180, -5),
                                                                 Place(135, 0), testing::_));
}

TEST(Isolines, haveLongitudesFromMinus180ToBelow180)
{
    for (const Isoline& line : isolinesOf(gridOf("4x2 90,1 90,-1: 0,9,0,9,9,9,9,0"), 5)) {
        for (const LonLat& place : line.places) {
            EXPECT_GE(place.longitude, -180);
            EXPECT_LT(place.longitude, 180);
        }
    }
}

TEST(Isolines, passThroughCellsWhoseValueEqualsTheLevelOnce)
{
    // The middle row equals the level.
    const std::vector<Isoline> lines = isolinesOf(gridOf("3x3 0,1 1,-1: 0,0,0,5,5,5,9,9,9"), 5);
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_THAT(placesOf(lines[0]), ElementsAre(Place(0, 0), Place(1, 0), Place(2, 0)));
    EXPECT_THAT(isolinesOf(gridOf("3x3 0,1 1,-1: 0,0,0,0,5,0,0,0,0"), 5), IsEmpty()) << "a single cell is not a line";
}

TEST(Isolines, haveTheirHigherValuesOnTheSameSide)
{
    // Rows run northwards.
    const std::vector<Isoline> lines = isolinesOf(gridOf("2x2 0,0 1,1: 0,0,9,9"), 4.5);
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_THAT(placesOf(lines[0]), ElementsAre(Place(0, 0.5), Place(1, 0.5))) << "the higher values are on the left";
}

TEST(Isolines, haveLengthsAlongGreatCircles)
{
    const double quarter = 6371.0088 * std::acos(-1.0) / 2;
    EXPECT_NEAR(lengthOf({{0, 0}, {90, 0}}), quarter, 1e-9);
    EXPECT_NEAR(lengthOf({{0, 0}, {0, 90}, {50, 0}}), 2 * quarter, 1e-9);
    EXPECT_NEAR(lengthOf({{179, 0}, {-179, 0}}), quarter / 45, 1e-9) << "across the date line";
    // By the spherical law of cosines.
    const double cosine = std::pow(std::sin(std::acos(-1.0) / 3), 2) + 0.25 * std::cos(std::acos(-1.0) / 18);
    EXPECT_NEAR(lengthOf({{20, 60}, {30, 60}}), 6371.0088 * std::acos(cosine), 1e-9);
    EXPECT_EQ(lengthOf({}), 0);
    EXPECT_EQ(lengthOf({{5, 5}}), 0);
}

TEST(IsolineSet, isEqualIfItsLinesAre)
{
    using Rain::IsolineSet;
    const Isoline line{5, false, {{0, 0}, {1, 1}}};
    EXPECT_EQ((IsolineSet{{line}}), (IsolineSet{{line}}));
    EXPECT_NE((IsolineSet{{line}}), (IsolineSet{}));
    EXPECT_NE((IsolineSet{{line}}), (IsolineSet{{{6, false, {{0, 0}, {1, 1}}}}}));
    EXPECT_NE((IsolineSet{{line}}), (IsolineSet{{{5, true, {{0, 0}, {1, 1}}}}}));
    EXPECT_EQ(IsolineSet{}, (IsolineSet{std::vector<Isoline>{}}));
}

TEST(IsolineSet, isDescribedByATextThatCannotBeRead)
{
    using Trait = Orla::VValueTrait<Rain::IsolineSet>;
    EXPECT_EQ(Trait::Text({}), "0 isolines");
    EXPECT_EQ(Trait::Text(Rain::IsolineSet{{{5, false, {}}}}), "1 isoline");
    Rain::IsolineSet isolines;
    EXPECT_FALSE(Trait::setValueFromText(isolines, "1 isoline"));
}

} // namespace IsolinesTest
