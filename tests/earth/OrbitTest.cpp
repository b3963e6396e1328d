#include <earth/Orbit.hpp>

#include <gtest/gtest.h>

#include <cmath>

namespace OrbitTest {

using Orla::VCamera;
using Earth::orbited;
using Earth::zoomed;

namespace {

void expectAt(const VCamera& camera, double x, double y, double z)
{
    EXPECT_NEAR(camera.position.x(), x, 1e-9);
    EXPECT_NEAR(camera.position.y(), y, 1e-9);
    EXPECT_NEAR(camera.position.z(), z, 1e-9);
}

const VCamera start{{10, 0, 0}, {0, 0, 0}, {0, 0, 1}, 30};

} // namespace

TEST(Orbit, movesEastAndNorthAroundTheFocus)
{
    expectAt(orbited(start, 90, 0), 0, 10, 0);
    expectAt(orbited(start, -180, 0), -10, 0, 0);
    expectAt(orbited(start, 0, 30), 10 * std::sqrt(0.75), 0, 5);
    expectAt(orbited(start, 90, -30), 0, 10 * std::sqrt(0.75), -5);
    expectAt(orbited(VCamera{{11, 2, 3}, {1, 2, 3}, {0, 0, 1}, 30}, 90, 0), 1, 12, 3);
}

TEST(Orbit, changesOnlyThePosition)
{
    const VCamera moved = orbited(start, 12, 34);
    EXPECT_EQ(moved.focus, start.focus);
    EXPECT_EQ(moved.up, start.up);
    EXPECT_EQ(moved.fieldOfView, start.fieldOfView);
}

TEST(Orbit, staysOneDegreeAwayFromThePoles)
{
    const double degree = std::acos(-1) / 180;
    expectAt(orbited(start, 0, 500), 10 * std::cos(89 * degree), 0, 10 * std::sin(89 * degree));
    expectAt(orbited(start, 0, -500), 10 * std::cos(89 * degree), 0, -10 * std::sin(89 * degree));
}

TEST(Orbit, doesNotMoveACameraAtItsFocus)
{
    const VCamera inside{{1, 1, 1}, {1, 1, 1}, {0, 0, 1}, 30};
    EXPECT_EQ(orbited(inside, 10, 10), inside);
}

TEST(Orbit, zoomsAlongTheView)
{
    expectAt(zoomed(VCamera{{11, 2, 3}, {1, 2, 3}, {0, 0, 1}, 30}, 0.5), 6, 2, 3);
}

} // namespace OrbitTest
