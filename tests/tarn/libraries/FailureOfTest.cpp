#include <tarn/libraries/FailureOf.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

using Tarn::failureOf;

TEST(FailureOf, returnsAReasonForEveryFailure)
{
    EXPECT_EQ(failureOf([] {}), "");
    EXPECT_EQ(failureOf([] { throw std::runtime_error("out of paint"); }), "out of paint");
    EXPECT_EQ(failureOf([] { throw std::runtime_error(""); }), "an exception without a message");
    EXPECT_EQ(failureOf([] { throw 5; }), "something other than a std::exception was thrown");
}
