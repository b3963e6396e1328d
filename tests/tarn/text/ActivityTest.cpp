#include <tarn/text/Activity.hpp>

#include <gtest/gtest.h>

namespace ActivityTest {

using Tarn::Activity;

TEST(Activity, isTheInnermostOneUntilItEnds)
{
    EXPECT_EQ(Activity::current(), nullptr);
    {
        const Activity outer{"loading", "a.so"};
        {
            const Activity inner{"creating", "an object"};
            EXPECT_EQ(Activity::current(), &inner);
        }
        ASSERT_EQ(Activity::current(), &outer);
        EXPECT_STREQ(outer.what(), "loading");
        EXPECT_STREQ(outer.name(), "a.so");
    }
    EXPECT_EQ(Activity::current(), nullptr);
}

} // namespace ActivityTest
