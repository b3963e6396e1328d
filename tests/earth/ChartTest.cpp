#include <earth/Chart.hpp>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace ChartTest {

using Earth::Chart;
using testing::AllOf;
using testing::HasSubstr;

namespace {

using point = Chart::point;

void expectNear(const point& found, const point& expected, double tolerance)
{
    for (std::size_t axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(found[axis], expected[axis], tolerance) << "axis " << axis;
}

std::string refusal(const std::string& name)
{
    try {
        const Chart chart{name};
        return "accepted " + chart.name();
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
}

// Places, and their coordinates in charts. The numbers were printed by PROJ 9.1's programs:
// proj -f %.4f +ellps=WGS84 and the parameters, or cs2cs -f %.4f EPSG:4326 and the code.
const struct {
    const char* chart;
    point place;
    point coordinates;
} cases[] = {
    {"+proj=robin", {10, 50, 0}, {819964.6102, 5326895.7260, 0}},
    {"+proj=robin", {-122.197, 46.2035, 0}, {-10271284.3993, 4931425.7669, 0}},
    {"+proj=moll", {170, -80, 0}, {5553219.2885, -8527486.0418, 0}},
    {"+proj=utm +zone=32", {10, 50, -700}, {571666.4475, 5539109.8153, -700}},
    {"+proj=merc", {170, -80, 0}, {18924313.4349, -15496570.7397, 0}},
    {"+proj=eqearth", {-122.197, 46.2035, 5}, {-9954754.6307, 5594402.2999, 5}},
    {"+proj=laea +lat_0=90", {10, 50, 0}, {759056.0000, -4304820.4929, 0}},
    {"EPSG:3857", {10, 50, 3}, {1113194.9079, 6446275.8410, 3}},
    {"EPSG:2056", {8, 47, 0}, {2642695.4202, 1205590.5223, 0}},
    {"+proj=pipeline +step +proj=merc +ellps=WGS84", {10, 50, 0}, {1113194.9079, 6413524.5942, 0}},
    {"+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad +step +proj=merc +ellps=WGS84",
     {10, 50, 0},
     {1113194.9079, 6413524.5942, 0}},
};

} // namespace

TEST(Chart, agreesWithProjInBothDirections)
{
    for (const auto& [name, place, coordinates] : cases) {
        SCOPED_TRACE(name);
        const Chart chart{name};
        EXPECT_EQ(chart.name(), name);
        EXPECT_FALSE(chart.isGeocentric());
        ASSERT_TRUE(chart.hasInverse());
        expectNear(chart.fromGeographic(place), coordinates, 1e-3);
        const point back = chart.toGeographic(coordinates);
        EXPECT_NEAR(back.x(), place.x(), 1e-7);
        EXPECT_NEAR(back.y(), place.y(), 1e-7);
    }
}

TEST(Chart, isBasedOnWgs84UnlessAnEllipsoidIsGiven)
{
    // proj -f %.4f +proj=utm +zone=32 +ellps=bessel; and the equator of a sphere.
    EXPECT_NEAR(Chart{"+proj=utm +zone=32 +ellps=bessel"}.fromGeographic({10, 50, 0}).y(), 5538542.4842, 1e-3);
    EXPECT_NEAR(Chart{"+proj=merc +R=1000"}.fromGeographic({180, 0, 0}).x(), 1000 * std::acos(-1), 1e-9);
    // proj -f %.4f +proj=omerc +alpha=30 +lonc=5 +lat_0=40 +a=1000 +b=1000
    EXPECT_NEAR(Chart{"+proj=omerc +alpha=30 +lonc=5 +lat_0=40 +a=1000 +b=1000"}.fromGeographic({10, 50, 0}).y(),
                176.2023, 1e-3);
}

TEST(Chart, takesLongitudeBeforeLatitudeInDegreesWhateverTheSystem)
{
    for (const char* name : {"geographic", "EPSG:4326", "+proj=longlat", "OGC:CRS84"}) {
        SCOPED_TRACE(name);
        expectNear(Chart{name}.fromGeographic({10, 50, 100}), {10, 50, 100}, 1e-9);
    }
}

TEST(Chart, convertsExactlyWithoutProj)
{
    const point place{-122.197, 46.2035, -3280};
    EXPECT_EQ(Chart{}.fromGeographic(place), place);
    EXPECT_EQ(Chart{}, Chart{"geographic"});
    // A quarter of the equator.
    expectNear(Chart{"plate carree"}.fromGeographic({90, -90, 7}), {10018754.171394622, -10018754.171394622, 7}, 1e-8);
    // cs2cs -f %.4f EPSG:4979 EPSG:4978
    expectNear(Chart{"geocentric"}.fromGeographic({10, 50, 100}), {4045519.7076, 713334.2754, 4862865.6422}, 1e-3);
    for (const char* name : {"geographic", "plate carree", "geocentric"}) {
        SCOPED_TRACE(name);
        const Chart chart{name};
        expectNear(chart.toGeographic(chart.fromGeographic(place)), place, 1e-8);
    }
}

TEST(Chart, isGeocentricIfProjSaysSo)
{
    EXPECT_TRUE(Chart{"geocentric"}.isGeocentric());
    for (const char* name : {"EPSG:4978", "+proj=geocent +datum=WGS84 +type=crs", "+proj=cart"})
        EXPECT_TRUE(Chart{name}.isGeocentric()) << name;
    expectNear(Chart{"+proj=cart"}.fromGeographic({10, 50, 100}), {4045519.7076, 713334.2754, 4862865.6422}, 1e-3);
}

TEST(Chart, givesNoCoordinatesOutsideItsDomain)
{
    const Chart chart{"+proj=ortho +lat_0=90"};
    std::vector<point> places{{0, 60, 0}, {0, -10, 0}, {20, 80, 0}};
    chart.fromGeographic(places);
    EXPECT_TRUE(std::isfinite(places[0].x()));
    EXPECT_TRUE(std::isnan(places[1].x()) && std::isnan(places[1].y()) && std::isnan(places[1].z()));
    EXPECT_TRUE(std::isfinite(places[2].x())) << "an error must not affect the next place";
    EXPECT_TRUE(std::isnan(chart.toGeographic({1e8, 0, 0}).x()));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(chart.fromGeographic({nan, nan, nan}).x()));
}

TEST(Chart, hasNoInverseIfProjHasNone)
{
    const Chart chart{"+proj=airy"};
    EXPECT_FALSE(chart.hasInverse());
    EXPECT_TRUE(std::isfinite(chart.fromGeographic({10, 50, 0}).x()));
    EXPECT_TRUE(std::isnan(chart.toGeographic({0, 0, 0}).x()));
}

TEST(Chart, reportsProjsReasonForARefusal)
{
    EXPECT_THAT(refusal("+proj=nonsense"),
                AllOf(HasSubstr("found the chart \"+proj=nonsense\""), HasSubstr("Unknown projection")));
    EXPECT_THAT(refusal("+proj=laea +lat_0=200"), HasSubstr("lat_0"));
    EXPECT_THAT(refusal("EPSG:99999999"), HasSubstr("crs not found"));
    EXPECT_THAT(refusal("+proj="), HasSubstr("refuses"));
    // PROJ would complete these names.
    for (const char* name : {"", "mercator", "Geographic", "plate carree ", "robin", "WGS 84"})
        EXPECT_THAT(refusal(name), HasSubstr("expected geographic, geocentric, plate carree or a text for PROJ"))
            << name;
}

TEST(Chart, knowsWhereASystemIsMeantToBeUsed)
{
    const auto mercator = Chart{"EPSG:3857"}.areaOfUse();
    ASSERT_TRUE(mercator);
    EXPECT_EQ(mercator->west, -180);
    EXPECT_EQ(mercator->east, 180);
    EXPECT_NEAR(mercator->north, 85.06, 0.01);
    const auto chatham = Chart{"EPSG:3793"}.areaOfUse(); // NZGD2000 / Chatham Islands
    ASSERT_TRUE(chatham);
    EXPECT_LT(chatham->west, chatham->east);
    EXPECT_FALSE(Chart{"+proj=robin"}.areaOfUse());
    EXPECT_FALSE(Chart{}.areaOfUse());
}

TEST(Chart, convertsInSeveralThreads)
{
    const Chart shared{"+proj=robin"};
    const auto convert = [&shared] {
        for (int i = 0; i < 500; ++i) {
            const point place = shared.fromGeographic({10, 50, 0});
            ASSERT_NEAR(place.x(), 819964.6102, 1e-3);
            ASSERT_NEAR(place.y(), 5326895.7260, 1e-3);
            ASSERT_TRUE(std::isnan(Chart{"+proj=ortho"}.fromGeographic({170, 0, 0}).x()));
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(convert);
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace ChartTest
