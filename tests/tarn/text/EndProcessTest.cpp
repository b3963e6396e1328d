#include <tarn/text/EndProcess.hpp>

#include <gtest/gtest.h>

#include <cstdlib>

namespace EndProcessTest {

TEST(EndProcessDeathTest, endsWithItsStatusAndRunsNoExitHandlers)
{
    const auto end = [] {
        std::atexit([] { ::_exit(1); });
        Tarn::endProcess(7);
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(7), "");
}

} // namespace EndProcessTest
