#include <earth/GlobeProjection.hpp>

#include "earth/Planar.hpp"

#include <earth/DateLine.hpp>
#include <earth/TopoJson.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace GlobeProjectionTest {

using Orla::VCamera;
using Earth::encloses;
using Earth::GlobeProjection;
using Earth::Line;
using Earth::LonLat;
using Earth::Pixel;
using Earth::Polygon;
using Earth::Ring;

namespace {

constexpr double a = 6378137;
constexpr double b = 6356752.314245179;

// Above longitude and latitude 0, at twice the equator's radius. 300 pixels are a tangent
// of 1.
const VCamera camera{{2 * a, 0, 0}, {0, 0, 0}, {0, 0, 1}, 90};
constexpr Earth::Rectangle view{100, 50, 800, 600};
constexpr Pixel middle{500, 350};

double x(const Pixel& pixel)
{
    return pixel.x;
}

double y(const Pixel& pixel)
{
    return pixel.y;
}

bool covers(const std::vector<std::vector<Pixel>>& rings, const Pixel& pixel)
{
    return evenOdd(rings, pixel.x, pixel.y, x, y);
}

double area(const std::vector<std::vector<Pixel>>& rings)
{
    double sum = 0;
    for (const auto& ring : rings)
        sum += std::abs(signedArea(ring, x, y));
    return sum;
}

double fromMiddle(const Pixel& pixel)
{
    return std::hypot(pixel.x - middle.x, pixel.y - middle.y);
}

std::string message(const VCamera& refused)
{
    try {
        const GlobeProjection globe{refused, view};
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "no error";
}

} // namespace

// At the horizon, the direction to the camera is perpendicular to the normal: on the
// equator at the angle whose cosine is a / 2a; on the meridian at a reduced latitude of 60
// degrees. The tangent of the geodetic latitude is a / b times as large.
TEST(GlobeProjection, hidesPlacesBeyondTheHorizonOfTheEllipsoid)
{
    const GlobeProjection globe{camera, view};
    for (const double side : {-1.0, 1.0}) {
        EXPECT_FALSE(globe.isHidden({side * 59.999, 0}));
        EXPECT_TRUE(globe.isHidden({side * 60.001, 0}));
        const double latitude = std::atan(a / b * std::sqrt(3)) * 180 / std::numbers::pi;
        EXPECT_GT(latitude, 60.08) << "a sphere would hide everything beyond 60";
        EXPECT_FALSE(globe.isHidden({0, side * (latitude - 0.001)}));
        EXPECT_TRUE(globe.isHidden({0, side * (latitude + 0.001)}));
    }
    EXPECT_TRUE(globe.isHidden({180, 0}));
    EXPECT_TRUE(globe.isHidden({0, 90}));
}

TEST(GlobeProjection, projectsPlacesInPerspective)
{
    const GlobeProjection globe{camera, view};
    const auto centre = globe.seen(LonLat{0, 0});
    ASSERT_TRUE(centre);
    EXPECT_NEAR(centre->x, middle.x, 1e-9);
    EXPECT_NEAR(centre->y, middle.y, 1e-9);

    // Half a radius to the east and (2 - cos 30) radii away.
    const auto east = globe.seen(LonLat{30, 0});
    ASSERT_TRUE(east);
    EXPECT_NEAR(east->x, middle.x + 300 * 0.5 / (2 - std::sqrt(3) / 2), 1e-9);
    EXPECT_NEAR(east->y, middle.y, 1e-9);
    const auto north = globe.seen(LonLat{0, 30});
    ASSERT_TRUE(north);
    EXPECT_NEAR(north->x, middle.x, 1e-9);
    EXPECT_LT(north->y, middle.y) << "north is up";
    EXPECT_FALSE(globe.seen(LonLat{180, 0})) << "the far side";
}

TEST(GlobeProjection, omitsShapesOutsideTheView)
{
    const GlobeProjection globe{VCamera{camera.position, camera.focus, camera.up, 20}, view};
    EXPECT_TRUE(globe.seen(LonLat{8, 0}));
    EXPECT_FALSE(globe.seen(LonLat{20, 0})) << "right of the view";
    EXPECT_FALSE(globe.seen(LonLat{0, 20})) << "above it";
    EXPECT_TRUE(globe.seen(LonLat{12, 0})) << "the view is wider than high";
    EXPECT_FALSE(globe.seen(LonLat{0, 12}));
    EXPECT_TRUE(globe.seen(Ring{{30, 0}, {40, 0}, {40, 10}}).empty());
    EXPECT_TRUE(globe.seenLine({{30, 0}, {40, 0}}).empty());

    const GlobeProjection away{VCamera{{2 * a, 0, 0}, {3 * a, 0, 0}, {0, 0, 1}, 90}, view};
    EXPECT_FALSE(away.seen(LonLat{0, 0})) << "behind the camera";
    EXPECT_TRUE(away.disc().empty());
    EXPECT_FALSE(away.circleAroundDisc());
    EXPECT_TRUE(away.seen(Ring{{-10, -10}, {10, -10}, {10, 10}, {-10, 10}}).empty());
    EXPECT_TRUE(away.seenLine({{-10, 0}, {10, 0}}).empty());
}

// The tangents from the eye at 2a touch the equator at an angle with the sine a / 2a, and
// the meridian at the height b sqrt(3)/2 above the point a/2 of the axis.
TEST(GlobeProjection, projectsTheDiscUpToItsTangents)
{
    const GlobeProjection globe{camera, view};
    double right = 0;
    double up = 0;
    const auto disc = globe.disc();
    for (const Pixel& pixel : disc) {
        right = std::max(right, pixel.x - middle.x);
        up = std::max(up, middle.y - pixel.y);
    }
    EXPECT_NEAR(right, 300 / std::sqrt(3), 1e-2);
    EXPECT_NEAR(up, 300 / std::sqrt(3) * b / a, 1e-2);
    const auto circle = globe.circleAroundDisc();
    ASSERT_TRUE(circle);
    EXPECT_NEAR(circle->radius, 300 / std::sqrt(3), 1e-2);
    EXPECT_NEAR(circle->center.x, middle.x, 1e-9);
    EXPECT_NEAR(circle->center.y, middle.y, 1e-9);
}

TEST(GlobeProjection, cutsRingsAtTheHorizonAndClosesThemAlongIt)
{
    const GlobeProjection globe{camera, view};
    Ring ring{{40, -20}, {80, -20}, {80, 20}, {40, 20}};
    for (int turned = 0; turned < 2; ++turned) {
        const auto seen = globe.seen(ring);
        ASSERT_EQ(seen.size(), 1u);
        EXPECT_TRUE(covers(seen, *globe.seen(LonLat{59, 0})));
        EXPECT_TRUE(covers(seen, *globe.seen(LonLat{41, 19})));
        EXPECT_FALSE(covers(seen, *globe.seen(LonLat{39, 0})));
        EXPECT_FALSE(covers(seen, *globe.seen(LonLat{50, 25})));
        std::size_t onHorizon = 0;
        for (const Pixel& pixel : seen[0]) {
            EXPECT_LE(fromMiddle(pixel), 300 / std::sqrt(3) + 1e-6);
            onHorizon += fromMiddle(pixel) > 300 / std::sqrt(3) - 0.1 ? 1u : 0u;
        }
        EXPECT_GT(onHorizon, 20u) << "the ring follows the horizon instead of a chord";
        std::reverse(ring.begin(), ring.end());
    }
}

TEST(GlobeProjection, splitsARingThatTheHorizonCutsTwice)
{
    const GlobeProjection globe{camera, view};
    // A band beyond the horizon with two arms that reach into view.
    const Ring fork{{50, -20}, {80, -20}, {80, 20}, {50, 20}, {50, 10}, {70, 10}, {70, -10}, {50, -10}};
    const auto seen = globe.seen(fork);
    EXPECT_EQ(seen.size(), 2u);
    EXPECT_TRUE(covers(seen, *globe.seen(LonLat{55, 15})));
    EXPECT_TRUE(covers(seen, *globe.seen(LonLat{55, -15})));
    EXPECT_FALSE(covers(seen, *globe.seen(LonLat{59, 0})));
}

TEST(GlobeProjection, hidesRingsOnTheFarSide)
{
    const GlobeProjection globe{camera, view};
    EXPECT_TRUE(globe.seen(Ring{{100, -10}, {120, -10}, {120, 10}, {100, 10}}).empty());
    EXPECT_TRUE(globe.seen(Ring{{170, -10}, {-170, -10}, {-170, 10}, {170, 10}}).empty());
    EXPECT_TRUE(globe.seen(Ring{{-135, -75}, {-45, -75}, {45, -75}, {135, -75}}).empty());
    EXPECT_TRUE(globe.seenLine({{100, 0}, {120, 0}}).empty());
    EXPECT_TRUE(globe.seen(Ring{}).empty());
    EXPECT_TRUE(globe.seenLine({}).empty());
}

TEST(GlobeProjection, fillsTheDiscAboveTheMiddleOfALargeRing)
{
    // From 64 km above the ground, the horizon is some 8 degrees away.
    const GlobeProjection globe{VCamera{{1.01 * a, 0, 0}, {0, 0, 0}, {0, 0, 1}, 175}, view};
    const auto seen = globe.seen(Ring{{-30, -30}, {30, -30}, {30, 30}, {-30, 30}});
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_NEAR(area(seen), area({globe.disc()}), 1e-9);
    EXPECT_TRUE(globe.seen(Ring{{10, -30}, {30, -30}, {30, 30}, {10, 30}}).empty());
}

TEST(GlobeProjection, cutsLinesAtTheHorizonAndTheView)
{
    const GlobeProjection globe{camera, view};
    const auto equator = globe.seenLine({{-180, 0}, {-60.5, 0}, {60.5, 0}, {180, 0}});
    ASSERT_EQ(equator.size(), 1u);
    EXPECT_NEAR(equator[0].front().x, middle.x - 300 / std::sqrt(3), 1e-2);
    EXPECT_NEAR(equator[0].back().x, middle.x + 300 / std::sqrt(3), 1e-2);
    EXPECT_GT(equator[0].size(), 50u) << "curved, not a chord";

    const auto aroundTheWorld = globe.seenLine({{0, 10}, {120, 10}, {-120, 10}, {0, 10}});
    EXPECT_EQ(aroundTheWorld.size(), 2u) << "hidden in between";

    const GlobeProjection near{VCamera{camera.position, camera.focus, camera.up, 20}, view};
    const auto across = near.seenLine({{-50, 0}, {50, 0}});
    ASSERT_EQ(across.size(), 1u);
    EXPECT_LT(across[0].front().x, view.left) << "a little beyond the view";
    EXPECT_GT(across[0].front().x, view.left - 100);
    EXPECT_LT(across[0].back().x, view.left + view.width + 100);
}

TEST(GlobeProjection, refusesCamerasThatCannotSeeTheEarthFromOutside)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(message(camera), "no error");
    EXPECT_EQ(message({{6e6, 0, 0}, {0, 0, 0}, {0, 0, 1}, 30}),
              "camera: found the position {6000000,0,0} inside the Earth, expected one outside it, in metres from its "
              "centre");
    EXPECT_EQ(message({{0, 0, b + 1}, {0, 0, 0}, {1, 0, 0}, 30}), "no error") << "just above the pole";
    EXPECT_NE(message({{0, 0, b - 1}, {0, 0, 0}, {1, 0, 0}, 30}), "no error") << "just below the pole";
    for (const double angle : {0.0, -10.0, 180.0, nan, infinity})
        EXPECT_NE(message({{2 * a, 0, 0}, {0, 0, 0}, {0, 0, 1}, angle}).find("expected one between 0 and 180"),
                  std::string::npos);
    for (const double coordinate : {nan, infinity})
        EXPECT_EQ(message({{2 * a, coordinate, 0}, {0, 0, 0}, {0, 0, 1}, 30}),
                  "camera: found a coordinate that is not finite, expected finite coordinates");
    const char* const noDirection = "camera: found a degenerate orientation, expected a focus away from the position "
                                    "and an up direction not along the view";
    EXPECT_EQ(message({{2 * a, 0, 0}, {2 * a, 0, 0}, {0, 0, 1}, 30}), noDirection);
    EXPECT_EQ(message({{2 * a, 0, 0}, {0, 0, 0}, {1, 0, 0}, 30}), noDirection);
    EXPECT_EQ(message({{2 * a, 0, 0}, {0, 0, 0}, {0, 0, 0}, 30}), noDirection);
    EXPECT_NE(message({{1e300, 0, 0}, {0, 0, 0}, {0, 0, 1}, 30}), "no error");
}

// From any side, far and near, the projected land covers a visible place if and only if
// the place is on land.
TEST(GlobeProjection, coversExactlyTheVisibleLand)
{
    const std::vector<Polygon> land = Earth::readTopoJson(LAND_JSON).polygons;
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> uniform(-1, 1);
    std::size_t compared = 0;
    std::size_t onLand = 0;
    for (int i = 0; i < 60; ++i) {
        const double longitude = 180 * uniform(random) * std::numbers::pi / 180;
        const double sine = i == 0 ? 1 : i == 1 ? -1 : uniform(random);
        const double cosine = std::sqrt(1 - sine * sine);
        const double distance = a * (1.02 + 6 * std::pow(uniform(random), 4));
        const auto aside = [&] { return i % 3 == 0 ? 0 : 0.7 * a * uniform(random); };
        const VCamera from{
            {distance * cosine * std::cos(longitude), distance * cosine * std::sin(longitude), distance * sine},
            {aside(), aside(), aside()},
            {0.1, 0.2, 1},
            80 + 70 * uniform(random)};
        const GlobeProjection globe{from, view};
        std::vector<std::vector<Pixel>> seen;
        for (const Polygon& polygon : land) {
            for (const Ring& ring : polygon) {
                for (auto& part : globe.seen(ring))
                    seen.push_back(std::move(part));
            }
        }
        const std::vector<std::vector<Pixel>> disc{globe.disc()};
        for (int k = 0; k < 60; ++k) {
            const LonLat place{180 * uniform(random), std::asin(uniform(random)) * 180 / std::numbers::pi};
            const auto pixel = globe.seen(place);
            // The outline of the disc is straight between places a degree apart.
            if (!pixel || !covers(disc, *pixel))
                continue;
            bool isLand = false;
            for (const Polygon& polygon : land) {
                for (const Ring& ring : polygon)
                    isLand ^= encloses(ring, place);
            }
            EXPECT_EQ(covers(seen, *pixel), isLand)
                << Orla::VValueTrait<VCamera>::Text(from) << " at " << place.longitude << ' ' << place.latitude;
            ++compared;
            onLand += isLand ? 1u : 0u;
        }
    }
    EXPECT_GT(compared, 300u);
    EXPECT_GT(onLand, 60u);
}

} // namespace GlobeProjectionTest
