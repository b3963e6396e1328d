#include <tarn/text/RunningCase.hpp>

#include <gtest/gtest.h>

#include <thread>

using Tarn::RunningCase;

TEST(RunningCase, isKnownInItsThreadUntilItEnds)
{
    EXPECT_EQ(RunningCase::current(), -1);
    {
        const RunningCase outer{7};
        {
            const RunningCase inner{8};
            EXPECT_EQ(RunningCase::current(), 8);
        }
        EXPECT_EQ(RunningCase::current(), 7);
        std::thread([] { EXPECT_EQ(RunningCase::current(), -1); }).join();
    }
    EXPECT_EQ(RunningCase::current(), -1);
}
