#include "earth/Evaluation.hpp"

#include <quakes/Catalogue.hpp>

#include <fathom/VCamera.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace QuakeViewTest {

using Quakes::Catalogue;
using Quakes::Quake;

namespace {

Quake quake(double longitude, double latitude, std::optional<double> depth)
{
    Quake result;
    result.longitude = longitude;
    result.latitude = latitude;
    result.depth = depth;
    return result;
}

std::string counts(const Evaluation& view)
{
    return view.text("inside") + " " + view.text("straddling") + " " + view.text("outside");
}

// Looks at latitude and longitude 0 from 10,000 km above the Earth's centre, with a view
// 30 degrees wide and high.
class Views : public testing::Test {
protected:
    Views() { view.set("camera", Orla::VCamera{{1e7, 0, 0}, {0, 0, 0}, {0, 0, 1}, 30}); }

    Evaluation view{"QuakeView"};
};

} // namespace

TEST_F(Views, countNothingWithoutEvents)
{
    EXPECT_EQ(view.run().failures, 0u);
    EXPECT_EQ(counts(view), "0 0 0");
}

TEST_F(Views, countEachEventOnce)
{
    view.set("catalog", Catalogue{{quake(0, 0, 10), quake(0, 0, std::nullopt), quake(180, 0, 0), quake(0, 89, 0)}});
    view.run();
    EXPECT_EQ(counts(view), "3 0 1") << "the Earth does not hide the event on the far side";
}

// The edge of the view meets the ground near 9 degrees of latitude; 50 km are almost half
// a degree.
TEST_F(Views, countBoxesAtTheEdgeAsStraddling)
{
    const struct {
        double latitude;
        const char* counts;
    } cases[] = {{7.5, "1 0 0"}, {8.6, "0 1 0"}, {8.9, "0 1 0"}, {10.5, "0 0 1"}};
    for (const auto& [latitude, expected] : cases) {
        SCOPED_TRACE(latitude);
        view.set("catalog", Catalogue{{quake(0, latitude, 0)}});
        view.run();
        EXPECT_EQ(counts(view), expected);
    }
}

TEST_F(Views, dependOnDepthReachAndDistances)
{
    view.set("catalog", Catalogue{{quake(0, 0, 600)}}); // 4,221,863 m from the camera
    view.set("near", 4.1e6);
    view.run();
    EXPECT_EQ(counts(view), "1 0 0");
    view.set("near", 4.2e6);
    view.run();
    EXPECT_EQ(counts(view), "0 1 0") << "50 km in every direction";
    view.set("reach", 1e4);
    view.run();
    EXPECT_EQ(counts(view), "1 0 0");
    view.set("near", 4.3e6);
    view.run();
    EXPECT_EQ(counts(view), "0 0 1");
    view.set("near", 1e5);
    view.set("far", 4.2e6);
    view.run();
    EXPECT_EQ(counts(view), "0 0 1");
}

TEST_F(Views, scaleTheirWidthByTheAspect)
{
    view.set("catalog", Catalogue{{quake(13, 0, 0), quake(0, 13, 0)}});
    view.run();
    EXPECT_EQ(counts(view), "0 0 2");
    view.set("aspect", 2.0);
    view.run();
    EXPECT_EQ(counts(view), "1 0 1");
}

TEST_F(Views, includeEverythingWhenTheCameraIsAtItsFocus)
{
    view.set("catalog", Catalogue{{quake(0, 0, 0), quake(180, 0, 0)}});
    view.setText("camera", "{0,0,0}{0,0,0}{0,0,1}30");
    view.run();
    EXPECT_EQ(counts(view), "2 0 0");
}

} // namespace QuakeViewTest
