#include <earth/Geocentric.hpp>

#include <gtest/gtest.h>

#include <proj.h>

#include <cmath>
#include <random>

using Gyre::PhysicalSpace;
using Earth::geocentric;

namespace {

// The conversion of PROJ, the standard library for projections.
class Proj {
public:
    Proj()
        : m_context{proj_context_create()}
        , m_conversion{proj_create(m_context, "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                                              "+step +proj=cart +ellps=WGS84")}
    {
    }
    Proj(const Proj&) = delete;
    Proj& operator=(const Proj&) = delete;
    ~Proj()
    {
        proj_destroy(m_conversion);
        proj_context_destroy(m_context);
    }

    bool isUsable() const { return m_conversion != nullptr; }

    PhysicalSpace::point operator()(double longitude, double latitude, double height) const
    {
        const PJ_COORD found = proj_trans(m_conversion, PJ_FWD, proj_coord(longitude, latitude, height, 0));
        return {found.xyz.x, found.xyz.y, found.xyz.z};
    }

private:
    PJ_CONTEXT* m_context;
    PJ* m_conversion;
};

void expectWithinAMicrometre(const PhysicalSpace::point& a, const PhysicalSpace::point& b)
{
    for (std::size_t axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(a[axis], b[axis], 1e-6);
}

} // namespace

TEST(Geocentric, agreesWithProjOnAndInsideTheEarth)
{
    const Proj proj;
    ASSERT_TRUE(proj.isUsable());
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> longitude(-180, 180);
    std::uniform_real_distribution<double> latitude(-90, 90);
    std::uniform_real_distribution<double> height(-700e3, 100e3);
    for (int i = 0; i < 2000; ++i) {
        const double place[] = {longitude(random), latitude(random), height(random)};
        SCOPED_TRACE(testing::Message() << place[0] << ' ' << place[1] << ' ' << place[2]);
        expectWithinAMicrometre(geocentric(place[0], place[1], place[2]), proj(place[0], place[1], place[2]));
    }
}

TEST(Geocentric, agreesWithProjAtThePolesAndTheDateLine)
{
    const Proj proj;
    ASSERT_TRUE(proj.isUsable());
    for (const double longitude : {-180.0, -90.0, 0.0, 90.0, 180.0}) {
        for (const double latitude : {-90.0, -45.0, 0.0, 45.0, 90.0})
            expectWithinAMicrometre(geocentric(longitude, latitude, 0), proj(longitude, latitude, 0));
    }
}

// The axes of the ellipsoid, from its definition.
TEST(Geocentric, agreesWithTheAxesOfTheEllipsoid)
{
    expectWithinAMicrometre(geocentric(0, 0, 0), {6378137, 0, 0});
    expectWithinAMicrometre(geocentric(90, 0, -1000), {0, 6377137, 0});
    expectWithinAMicrometre(geocentric(0, 90, 0), {0, 0, 6356752.314245179});
    expectWithinAMicrometre(geocentric(12, -90, 10), {0, 0, -6356762.314245179});
}
