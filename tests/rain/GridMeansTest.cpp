#include "Grids.hpp"
#include "earth/Evaluation.hpp"

#include <gmock/gmock.h>

namespace GridMeansTest {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(GridMeans, publishesTheMeansOfAnArea)
{
    Evaluation means{"GridMeans"};
    means.setText("grid", "2x3 0,60 180,-60: 3,3,,9,,");
    EXPECT_EQ(means.run().failures, 0u);
    EXPECT_EQ(means.text("mean"), "6");
    EXPECT_EQ(means.text("lowest"), "3");
    EXPECT_EQ(means.text("highest"), "9");
    EXPECT_EQ(means.text("cells"), "3");
    EXPECT_EQ(means.text("zonal"), "3,9,nan,");
    EXPECT_EQ(means.text("rows"), "60,0,-60,");

    means.setText("latitudes", "50:70");
    means.setText("longitudes", "170:-170");
    EXPECT_EQ(means.run().failures, 0u);
    EXPECT_EQ(means.text("mean"), "3");
    EXPECT_EQ(means.text("cells"), "1");
}

TEST(GridMeans, failsInAnAreaWithoutValues)
{
    Evaluation means{"GridMeans"};
    means.setText("grid", "2x1 0,60 180,-60: 3,3");
    means.setText("latitudes", "-10:10");
    const Warnings warnings;
    EXPECT_EQ(means.run().failures, 1u);
    EXPECT_THAT(warnings.all(), ElementsAre(HasSubstr("no cell with a value lies between the latitudes -10:10 and the "
                                                      "longitudes -180:180")));
}

} // namespace GridMeansTest
