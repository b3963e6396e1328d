#include <loam/Result.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <variant>

namespace ResultTest {

namespace {

using Loam::attempt;
using Loam::Failure;
using Loam::Result;

Result<int> half(int number)
{
    if (number % 2 != 0)
        return Failure{"the number is odd"};
    return number / 2;
}

TEST(Result, holdsTheValueAfterASuccess)
{
    const Result<int> result = half(6);
    ASSERT_TRUE(result);
    EXPECT_EQ(*result, 3);
    EXPECT_THROW(static_cast<void>(result.reason()), std::bad_variant_access);
}

TEST(Result, holdsTheReasonAfterAFailure)
{
    const Result<int> result = half(7);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.reason(), "the number is odd");
    EXPECT_THROW(static_cast<void>(*result), std::bad_variant_access);
}

TEST(Result, distinguishesAFailureFromAValueThatIsAText)
{
    const Result<std::string> value = std::string("text");
    const Result<std::string> failure = Failure{"text"};
    EXPECT_TRUE(value);
    EXPECT_FALSE(failure);
}

TEST(Result, givesAwayAValueThatCannotBeCopied)
{
    Result<std::unique_ptr<int>> result = std::make_unique<int>(5);
    const std::unique_ptr<int> taken = *std::move(result);
    EXPECT_THAT(taken, testing::Pointee(5));
}

TEST(Result, withoutAValueSucceedsByDefault)
{
    const Result<void> success;
    EXPECT_TRUE(success);
    EXPECT_THROW(static_cast<void>(success.reason()), std::bad_variant_access);
    const Result<void> failure = Failure{"the disk is full"};
    EXPECT_FALSE(failure);
    EXPECT_EQ(failure.reason(), "the disk is full");
}

TEST(Attempt, returnsTheValueOfTheFunction)
{
    const Result<int> result = attempt([] { return 4; });
    ASSERT_TRUE(result);
    EXPECT_EQ(*result, 4);
    EXPECT_TRUE(attempt([] {}));
}

TEST(Attempt, returnsTheMessageOfAnException)
{
    const Result<int> result = attempt([]() -> int { throw std::runtime_error("no such valve"); });
    ASSERT_FALSE(result);
    EXPECT_EQ(result.reason(), "no such valve");
}

TEST(Attempt, givesAReasonForExceptionsWithoutAMessage)
{
    EXPECT_EQ(attempt([] { throw std::runtime_error(""); }).reason(), "an exception without a message");
    EXPECT_EQ(attempt([] { throw 5; }).reason(), "something other than a std::exception was thrown");
    EXPECT_EQ(attempt([] { throw std::bad_alloc{}; }).reason(), "out of memory");
}

} // namespace

} // namespace ResultTest
