#include <tarn/libraries/Initialization.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <string>

namespace InitializationTest {

using Tarn::Initialization;

namespace {

// The handler is of the whole process.
struct Handler {
    explicit Handler(std::terminate_handler handler) { Initialization::setTerminateHandler(handler); }
    ~Handler() { Initialization::setTerminateHandler(nullptr); }
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;
};

} // namespace

TEST(Initialization, keepsTheTerminateHandlerOfAProgramThatSetsNone)
{
    const std::terminate_handler before = std::get_terminate();
    const std::string title = "library";
    const Initialization initialization{title};
    EXPECT_EQ(std::get_terminate(), before);
}

TEST(Initialization, replacesTheTerminateHandlerWhileItExists)
{
    const Handler handler{std::abort};
    const std::terminate_handler before = std::get_terminate();
    {
        const std::string title = "library";
        const Initialization initialization{title};
        EXPECT_EQ(std::get_terminate(), std::terminate_handler{std::abort});
        EXPECT_NE(std::get_terminate(), before);
    }
    EXPECT_EQ(std::get_terminate(), before);
}

TEST(Initialization, hasTheTitleOfTheInnermostLibrary)
{
    EXPECT_FALSE(Initialization::title());
    const std::string outer = "outer";
    const Initialization initialization{outer};
    {
        const std::string inner = "inner";
        const Initialization nested{inner};
        EXPECT_EQ(Initialization::title(), &inner);
    }
    EXPECT_EQ(Initialization::title(), &outer);
}

} // namespace InitializationTest
