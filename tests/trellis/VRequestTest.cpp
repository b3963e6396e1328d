#include <trellis/VRequest.hpp>

#include <gmock/gmock.h>

#include <limits>
#include <thread>

namespace VRequestTest {

using namespace Orla;
using testing::ElementsAre;

namespace {

const StrongPtr<ValuePool> noPool;

} // namespace

TEST(VRequest, carriesThePool)
{
    const auto pool = Loam::makeStrong<ValuePool>("run");
    EXPECT_EQ(VRequest(pool).valuePool(), pool);
    EXPECT_FALSE(VRequest(noPool).valuePool());
}

TEST(VRequest, reportsProgressBetweenZeroAndOne)
{
    std::vector<double> reported;
    const VRequest request(noPool, [&reported](double fraction) { reported.push_back(fraction); });
    const double inf = std::numeric_limits<double>::infinity();
    for (const double fraction : {0.25, 0.0, 1.0, -3.0, 1.5, inf, -inf, std::numeric_limits<double>::quiet_NaN()})
        request.reportProgress(fraction);
    EXPECT_THAT(reported, ElementsAre(0.25, 0, 1, 0, 1, 1, 0, 0));
}

TEST(VRequest, ignoresProgressWithoutACallback)
{
    VRequest request(noPool);
    request.reportProgress(0.5);
    EXPECT_FALSE(request.isCancelled());
}

TEST(VRequest, isCancelledDirectlyOrThroughAnyCopyOfItsCancellation)
{
    VRequest request(noPool);
    request.cancel();
    EXPECT_TRUE(request.isCancelled());
    EXPECT_TRUE(request.cancellation().isCancelled());

    VCancellation cancellation;
    const VRequest watched(noPool, {}, cancellation);
    const VRequest other(noPool);
    EXPECT_FALSE(watched.isCancelled());
    VCancellation copy = cancellation;
    copy.cancel();
    EXPECT_TRUE(watched.isCancelled());
    EXPECT_TRUE(cancellation.isCancelled());
    EXPECT_FALSE(other.isCancelled());
}

TEST(VRequest, isCancelledFromAnotherThread)
{
    VCancellation cancellation;
    const VRequest request(noPool, {}, cancellation);
    std::thread other([cancellation]() mutable { cancellation.cancel(); });
    while (!request.isCancelled())
        std::this_thread::yield();
    other.join();
    EXPECT_TRUE(request.isCancelled());
}

} // namespace VRequestTest
