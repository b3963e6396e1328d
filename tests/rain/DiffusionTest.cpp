#include <rain/Diffusion.hpp>

#include "Grids.hpp"

#include <rain/Means.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

namespace DiffusionTest {

using Rain::Diffusion;
using Rain::Grid;

namespace {

std::vector<double> valuesOf(const Grid& grid)
{
    return {grid.values()->begin(), grid.values()->end()};
}

std::vector<double> advanced(const Grid& grid, double amount, int steps)
{
    const Diffusion diffusion{grid, amount};
    std::vector<double> values = valuesOf(grid);
    for (int i = 0; i < steps; ++i)
        diffusion.advance(values);
    return values;
}

void expectNear(const std::vector<double>& found, const Grid& expected)
{
    ASSERT_EQ(found.size(), expected.frame().cells());
    for (std::size_t i = 0; i < found.size(); ++i) {
        const double value = (*expected.values())[i];
        if (std::isnan(value))
            EXPECT_TRUE(std::isnan(found[i])) << i;
        else
            EXPECT_NEAR(found[i], value, 1e-10) << i;
    }
}

// Returns the sum of the values, weighted by the cosine of the latitude.
double total(const Grid& grid, const std::vector<double>& values)
{
    double sum = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double latitude = grid.frame().latitudeAt(static_cast<double>(i / grid.frame().columns));
        if (!std::isnan(values[i]))
            sum += std::cos(latitude * std::numbers::pi / 180) * values[i];
    }
    return sum;
}

} // namespace

TEST(Diffusion, equalsTheSolutionOfTheWholeSystem)
{
    // Computed in NumPy with one dense matrix for all rows and one for all columns, from a list of
    // pairs of neighbours and the sizes of their exchange:
    //
    //     change[i, j] += size; change[j, i] += size; change[i, i] -= size; change[j, j] -= size
    //     values = numpy.linalg.solve(numpy.diag(weights) - change, weights * values)
    //
    // Around the Earth with missing values, two steps:
    expectNear(advanced(gridOf("6x4 -180,60 60,-30: 10,0,0,40,0,5,0,100,,0,0,0,7,,,30,2,2,1,2,3,4,5,6"), 2e6, 2),
               gridOf("6x4 -180,60 60,-30: 8.520185960155382,27.564465423829134,7.976232515042808,18.445493806507862,"
                      "5.494709801592863,4.633109198190432,8.710828775112983,73.83343131839563,,9.241444977994357,"
                      "2.0362700458374943,2.047976078899856,5.8535361418214915,,,18.89329935959372,3.683187497341301,"
                      "2.83599889300423,2.8497679146515296,2.0898406951925503,3.1580811838315848,8.861984326885427,"
                      "4.606737052925429,4.622359177670496"));
    // A part of the Earth, rows northwards, one step:
    expectNear(advanced(gridOf("4x3 10,40 5,5: 10,0,0,40,0,100,0,0,7,3,0,30"), 3e5, 1),
               gridOf("4x3 10,40 5,5: 12.637220651197804,15.337981909465087,13.614994294536622,19.473531025719694,"
                      "16.9933615413621,23.512272322214805,15.885643307383623,16.516888923255802,12.2137166403647,"
                      "15.576812858477064,12.74150248082199,16.08545106642283"));
}

TEST(Diffusion, equalsTheSolutionOfTheWholeSystemForTheWorld)
{
    // As above, with a dense matrix per row and per column; three steps.
    const std::vector<double> values = advanced(precipitation(), 1000, 3);
    const struct {
        std::size_t row;
        std::size_t column;
        double value;
    } cases[] = {{0, 0, 389.5876369008698},    {0, 359, 389.85536209457626},  {80, 0, 2979.0007613163934},
                 {95, 330, 4434.151872545311}, {167, 180, 38.08153198785019}, {60, 200, 11.471062559448013}};
    for (const auto& [row, column, value] : cases)
        EXPECT_NEAR(values[row * 360 + column], value, 1e-8) << row << ' ' << column;
    EXPECT_NEAR(*std::ranges::max_element(values), 12982.462636858392, 1e-8);
}

TEST(Diffusion, dampsAWaveAroundTheEarthByItsFactor)
{
    // On one row, the wave number k decays by 1 / (1 + 2 z (1 - cos(k d))) per step.
    constexpr double latitude = 60;
    constexpr std::size_t columns = 12;
    constexpr double wave = 2;
    const double spacing = 2 * std::numbers::pi / columns;
    std::vector<double> values;
    for (std::size_t i = 0; i < columns; ++i)
        values.push_back(std::cos(wave * spacing * static_cast<double>(i)));
    const Grid grid{{columns, 1, -180, latitude, 30, 1}, values};
    constexpr double amount = 1e6;
    const double exchange = amount / std::pow(6371.0088 * 0.5 * spacing, 2);
    const double factor = 1 / (1 + 2 * exchange * (1 - std::cos(wave * spacing)));
    const std::vector<double> after = advanced(grid, amount, 1);
    for (std::size_t i = 0; i < columns; ++i)
        EXPECT_NEAR(after[i], factor * values[i], 1e-14);
}

TEST(Diffusion, approachesTheDecayOfAHarmonicOfTheSphere)
{
    // P1(sin latitude) is multiplied by exp(-l (l + 1) k t / R^2) with l = 1.
    constexpr std::size_t rows = 180;
    std::vector<double> values;
    for (std::size_t row = 0; row < rows; ++row) {
        const double sine = std::sin((89.5 - static_cast<double>(row)) * std::numbers::pi / 180);
        values.insert(values.end(), 4, sine);
    }
    const Grid grid{{4, rows, -180, 89.5, 90, -1}, values};
    constexpr int steps = 100;
    constexpr double time = 0.1; // of R^2 / k
    const std::vector<double> after = advanced(grid, time / steps * 6371.0088 * 6371.0088, steps);
    for (std::size_t i = 0; i < values.size(); i += 37)
        EXPECT_NEAR(after[i], values[i] * std::exp(-2 * time), 3e-4);
}

TEST(Diffusion, keepsTheWeightedTotal)
{
    for (const std::string& text :
         {std::string("6x4 -180,60 60,-30: 10,0,0,40,0,5,0,100,,0,0,0,7,,,30,2,2,1,2,3,4,5,6"),
          std::string("4x3 10,40 5,5: 10,0,0,40,0,100,0,0,7,3,0,30"), std::string("2x2 0,45 180,-90: 1,2,3,4"),
          std::string("3x3 0,90 120,-90: 1,2,3,4,5,6,7,8,9")}) {
        const Grid grid = gridOf(text);
        const double before = total(grid, valuesOf(grid));
        EXPECT_NEAR(total(grid, advanced(grid, 1e6, 50)), before, 1e-13 * before) << text;
    }
    const double before = total(precipitation(), valuesOf(precipitation()));
    EXPECT_NEAR(total(precipitation(), advanced(precipitation(), 1000, 10)), before, 1e-12 * before);
}

TEST(Diffusion, neverLeavesTheRangeOfTheValues)
{
    for (const double amount : {1.0, 1e5, 1e12}) {
        const std::vector<double> values = advanced(precipitation(), amount, 1);
        EXPECT_GE(*std::ranges::min_element(values), 0) << amount;
        EXPECT_LE(*std::ranges::max_element(values), 20195) << amount;
    }
}

TEST(Diffusion, reachesTheMeanInTheEnd)
{
    const double mean = summaryOf(precipitation(), {}).mean;
    for (const double value : advanced(precipitation(), 1e13, 3))
        ASSERT_NEAR(value, mean, 0.01);
}

TEST(Diffusion, crossesTheDateLineOnlyAroundTheEarth)
{
    const std::vector<double> around = advanced(gridOf("4x1 -180,0 90,1: 0,0,0,8"), 1e6, 1);
    EXPECT_DOUBLE_EQ(around[0], around[2]);
    EXPECT_GT(around[0], around[1]);
    const std::vector<double> part = advanced(gridOf("4x1 -180,0 80,1: 0,0,0,8"), 1e6, 1);
    EXPECT_LT(part[0], part[1]);
}

TEST(Diffusion, crossesNoMissingValue)
{
    const std::vector<double> row = advanced(gridOf("5x1 0,0 1,1: 8,,0,,4"), 1e9, 1);
    EXPECT_EQ(row[0], 8);
    EXPECT_TRUE(std::isnan(row[1]));
    EXPECT_EQ(row[2], 0);
    EXPECT_EQ(row[4], 4);
    const std::vector<double> column = advanced(gridOf("1x3 0,0 1,1: 8,,4"), 1e9, 1);
    EXPECT_EQ(column[0], 8);
    EXPECT_EQ(column[2], 4);
}

TEST(Diffusion, keepsCellsCentredOnAPole)
{
    const std::vector<double> values = advanced(gridOf("3x3 0,90 120,-90: 1,2,3,4,5,6,7,8,9"), 1e16, 1);
    for (const std::size_t i : {0u, 1u, 2u, 6u, 7u, 8u})
        EXPECT_EQ(values[i], static_cast<double>(i + 1));
    EXPECT_NEAR(values[3], 5, 1e-6);
}

TEST(Diffusion, keepsSingleCells)
{
    EXPECT_EQ(advanced(gridOf("1x1 0,0 360,1: 5"), 1e9, 1)[0], 5);
    EXPECT_EQ(advanced(gridOf("1x1 0,0 1,1: 5"), 1e9, 1)[0], 5);
}

TEST(Diffusion, changesNothingInNoTime)
{
    expectNear(advanced(precipitation(), 0, 1), precipitation());
}

} // namespace DiffusionTest
