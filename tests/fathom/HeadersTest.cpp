#include <fathom/Forward.hpp> // first: the header must be self-contained

#include <fathom/fathom.hpp>

#include <gtest/gtest.h>

namespace HeadersTest {

using namespace Orla;

// One include suffices for the types of all libraries.
static_assert(sizeof(Loam::StringList) > 0 && sizeof(Gyre::BoundingBox) > 0 && sizeof(VNetwork) > 0);
static_assert(sizeof(VScheduler::Summary) > 0 && sizeof(VChartSelector) > 0 && sizeof(HotKey) > 0);

// What is only declared there is what is defined here.
TEST(Headers, declareTheTypesThatTheyDefine)
{
    const StrongPtr<VChartSelector> selector(new VChartSelector("selector", 0, nullptr));
    const StrongPtr<ValuePool> pool(new ValuePool);
    const VOutput<VChart>& chart = selector->currentChart();
    EXPECT_EQ(chart.value(pool), VChart());
}

} // namespace HeadersTest
