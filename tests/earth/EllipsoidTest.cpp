#include <earth/Ellipsoid.hpp>

#include <gtest/gtest.h>

#include <proj.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace EllipsoidTest {

using Gyre::PhysicalSpace;
using Earth::fromPlateCarree;
using Earth::geocentric;
using Earth::geographic;
using Earth::plateCarree;

namespace {

// The conversion of PROJ, the standard library for projections.
class Proj {
public:
    explicit Proj(const std::string& pipeline)
        : m_context{proj_context_create()}, m_conversion{proj_create(m_context, pipeline.c_str())}
    {
        EXPECT_TRUE(m_conversion) << pipeline;
    }
    Proj(const Proj&) = delete;
    Proj& operator=(const Proj&) = delete;
    ~Proj()
    {
        proj_destroy(m_conversion);
        proj_context_destroy(m_context);
    }

    PhysicalSpace::point operator()(const PhysicalSpace::point& place, PJ_DIRECTION direction = PJ_FWD) const
    {
        const PJ_COORD found = proj_trans(m_conversion, direction, proj_coord(place.x(), place.y(), place.z(), 0));
        return {found.xyz.x, found.xyz.y, found.xyz.z};
    }

private:
    PJ_CONTEXT* m_context;
    PJ* m_conversion;
};

const std::string fromDegrees = "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad +step ";

void expectNear(const PhysicalSpace::point& a, const PhysicalSpace::point& b, double aside, double upwards)
{
    EXPECT_NEAR(a.x(), b.x(), aside);
    EXPECT_NEAR(a.y(), b.y(), aside);
    EXPECT_NEAR(a.z(), b.z(), upwards);
}

constexpr double semiMinorAxis = 6356752.314245179;

void expectWithinAMicrometre(const PhysicalSpace::point& a, const PhysicalSpace::point& b)
{
    for (std::size_t axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(a[axis], b[axis], 1e-6);
}

} // namespace

TEST(Ellipsoid, agreesWithProjOnAndInsideTheEarth)
{
    const Proj proj{fromDegrees + "+proj=cart +ellps=WGS84"};
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> longitude(-180, 180);
    std::uniform_real_distribution<double> latitude(-90, 90);
    std::uniform_real_distribution<double> height(-700e3, 100e3);
    for (int i = 0; i < 2000; ++i) {
        const double place[] = {longitude(random), latitude(random), height(random)};
        SCOPED_TRACE(testing::Message() << place[0] << ' ' << place[1] << ' ' << place[2]);
        expectWithinAMicrometre(geocentric(place[0], place[1], place[2]), proj({place[0], place[1], place[2]}));
    }
}

TEST(Ellipsoid, agreesWithProjAtThePolesAndTheDateLine)
{
    const Proj proj{fromDegrees + "+proj=cart +ellps=WGS84"};
    for (const double longitude : {-180.0, -90.0, 0.0, 90.0, 180.0}) {
        for (const double latitude : {-90.0, -45.0, 0.0, 45.0, 90.0})
            expectWithinAMicrometre(geocentric(longitude, latitude, 0), proj({longitude, latitude, 0}));
    }
}

// The axes of the ellipsoid, from its definition.
TEST(Ellipsoid, agreesWithTheAxesOfTheEllipsoid)
{
    expectWithinAMicrometre(geocentric(0, 0, 0), {6378137, 0, 0});
    expectWithinAMicrometre(geocentric(90, 0, -1000), {0, 6377137, 0});
    expectWithinAMicrometre(geocentric(0, 90, 0), {0, 0, 6356752.314245179});
    expectWithinAMicrometre(geocentric(12, -90, 10), {0, 0, -6356762.314245179});
}

TEST(Ellipsoid, findsTheGeographicPlaceToABillionthOfADegree)
{
    const Proj proj{fromDegrees + "+proj=cart +ellps=WGS84"};
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> longitude(-180, 180);
    std::uniform_real_distribution<double> latitude(-90, 90);
    std::uniform_real_distribution<double> height(-12e3, 50e3);
    for (int i = 0; i < 5000; ++i) {
        const PhysicalSpace::point place{longitude(random), latitude(random), height(random)};
        SCOPED_TRACE(testing::Message() << place.x() << ' ' << place.y() << ' ' << place.z());
        const PhysicalSpace::point inSpace = proj(place);
        expectNear(geographic(inSpace), place, 1e-9, 1e-6);
        // The height from PROJ is an approximation there.
        expectNear(geographic(inSpace), proj(inSpace, PJ_INV), 1e-9, 1e-4);
    }
}

// PROJ only approximates here: down to the evolute of the ellipse, some 43 km around the
// centre, and out to the moon.
TEST(Ellipsoid, findsTheGeographicPlaceFarBelowAndAboveTheSurface)
{
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> longitude(-180, 180);
    std::uniform_real_distribution<double> latitude(-90, 90);
    std::uniform_real_distribution<double> height(-6.3e6, 4e8);
    for (int i = 0; i < 5000; ++i) {
        const PhysicalSpace::point place{longitude(random), latitude(random),
                                         i % 2 ? height(random) : -height(random) / 64};
        SCOPED_TRACE(testing::Message() << place.x() << ' ' << place.y() << ' ' << place.z());
        if (place.z() < -6.3e6)
            continue;
        const PhysicalSpace::point found = geographic(geocentric(place.x(), place.y(), place.z()));
        const double narrow = std::cos(place.y() * 3.141592653589793 / 180);
        EXPECT_NEAR(found.x(), place.x(), 1e-9 / narrow);
        EXPECT_NEAR(found.y(), place.y(), 1e-9);
        EXPECT_NEAR(found.z(), place.z(), 1e-6);
    }
}

TEST(Ellipsoid, isExactOnTheAxesAndAtTheCentre)
{
    const struct {
        PhysicalSpace::point inSpace;
        PhysicalSpace::point place;
    } cases[] = {
        {{6378137, 0, 0}, {0, 0, 0}},
        {{-6378137, 0, 0}, {180, 0, 0}},
        {{0, 6378237, 0}, {90, 0, 100}},
        {{0, -1e6, 0}, {-90, 0, -5378137}},
        {{0, 0, semiMinorAxis}, {0, 90, 0}},
        {{0, 0, -semiMinorAxis - 1000}, {0, -90, 1000}},
        {{0, 0, 1000}, {0, 90, 1000 - semiMinorAxis}},
        {{0, 0, 0}, {0, 90, -semiMinorAxis}},
        {{0, 0, -0.0}, {0, 90, -semiMinorAxis}},
    };
    for (const auto& [inSpace, place] : cases) {
        SCOPED_TRACE(testing::Message() << inSpace.x() << ' ' << inSpace.y() << ' ' << inSpace.z());
        expectNear(geographic(inSpace), place, 1e-13, 1e-8);
        expectNear(geocentric(place.x(), place.y(), place.z()), inSpace, 1e-8, 1e-8);
    }
}

// In the plane of the equator, nearer to the centre than a - b*b/a = 42,697.67 m, the
// nearest points of the ellipsoid lie north and south of the plane.
TEST(Ellipsoid, invertsPlacesNearTheCentre)
{
    for (const double x : {0.0, 1e-300, 1e-6, 1.0, 1e3, 42e3, 42697.6, 42697.7, 43e3}) {
        for (const double z : {0.0, 1e-300, 1e-9, 1e-3, 1.0, 1e3, 42e3, 43e3}) {
            SCOPED_TRACE(testing::Message() << x << ' ' << z);
            const PhysicalSpace::point place = geographic({x, 0, z});
            EXPECT_GE(place.y(), 0);
            EXPECT_LE(place.y(), 90);
            expectNear(geocentric(place.x(), place.y(), place.z()), {x, 0, z}, 2e-8, 2e-8);
        }
    }
    const double a = 6378137;
    const PhysicalSpace::point place = geographic({1000, 0, 0});
    EXPECT_GT(place.y(), 80) << "below a point near the pole";
    EXPECT_LT(std::abs(place.z()), a);
}

TEST(Ellipsoid, agreesWithProjOnThePlateCarree)
{
    const Proj proj{fromDegrees + "+proj=eqc +R=6378137"};
    std::mt19937_64 random(4);
    std::uniform_real_distribution<double> longitude(-180, 180);
    std::uniform_real_distribution<double> latitude(-90, 90);
    for (int i = 0; i < 1000; ++i) {
        const PhysicalSpace::point place{longitude(random), latitude(random), 10};
        expectNear(plateCarree(place), proj(place), 1e-8, 0);
        expectNear(fromPlateCarree(proj(place)), place, 1e-12, 0);
    }
    // A quarter of the equator.
    const PhysicalSpace::point quarter = plateCarree({90, -90, 7});
    expectNear(quarter, {10018754.171394622, -10018754.171394622, 7}, 1e-8, 0);
}

TEST(Ellipsoid, mapsTheEllipsoidOntoTheUnitSphereAndBack)
{
    for (const double latitude : {-90.0, -33.0, 0.0, 45.0, 90.0}) {
        const PhysicalSpace::point place = geocentric(77, latitude, 0);
        const PhysicalSpace::point onSphere = Earth::onUnitSphere(place);
        EXPECT_NEAR(std::hypot(onSphere.x(), onSphere.y(), onSphere.z()), 1, 1e-15);
        expectNear(Earth::fromUnitSphere(onSphere), place, 1e-8, 1e-8);
    }
}

TEST(Ellipsoid, terminatesForNonFiniteNumbers)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const PhysicalSpace::point& place :
         {PhysicalSpace::point{nan, 0, 0}, {0, 0, nan}, {infinity, 0, 0}, {0, 0, infinity}, {1, -infinity, 3}})
        EXPECT_FALSE(std::isfinite(geographic(place).z()));
}

} // namespace EllipsoidTest
