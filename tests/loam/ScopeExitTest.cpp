#include <loam/ScopeExit.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace ScopeExitTest {

using namespace Loam;

static_assert(!std::is_copy_constructible_v<ScopeExit<void (*)()>>, "the function must be called once");

TEST(ScopeExit, callsItsFunctionAtTheEndOfTheScope)
{
    std::string calls;
    {
        const ScopeExit first{[&calls] { calls += "first "; }};
        const ScopeExit second{[&calls] { calls += "second "; }};
        calls += "body ";
    }
    EXPECT_EQ(calls, "body second first ");
}

TEST(ScopeExit, callsItsFunctionWhenAnExceptionLeavesTheScope)
{
    int calls = 0;
    const auto fail = [&calls] {
        const ScopeExit guard{[&calls] { ++calls; }};
        throw std::runtime_error{"failure"};
    };
    EXPECT_THROW(fail(), std::runtime_error);
    EXPECT_EQ(calls, 1);
}

TEST(ScopeExitDeathTest, callsTheFunctionOfAStaticObjectWhenTheProgramEnds)
{
    EXPECT_EXIT(
        {
            static const ScopeExit guard{[] { std::_Exit(7); }};
            std::exit(1);
        },
        testing::ExitedWithCode(7), "");
}

} // namespace ScopeExitTest
