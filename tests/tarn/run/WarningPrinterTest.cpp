#include <tarn/run/WarningPrinter.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

namespace WarningPrinterTest {

using namespace Tarn;

TEST(WarningPrinter, printsEachWarningOnceAndCountsRepeatsAtTheEnd)
{
    const auto printer = Loam::makeStrong<WarningPrinter>();
    testing::internal::CaptureStderr();
    EXPECT_TRUE(printer->warned("too hot"));
    EXPECT_TRUE(printer->warned("too cold"));
    EXPECT_TRUE(printer->warned("too hot"));
    EXPECT_TRUE(printer->warned("too hot"));
    printer->printRepeats();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tarn: warning: too hot\n"
                                                      "tarn: warning: too cold\n"
                                                      "tarn: warning: too hot (3 times in all)\n");
}

TEST(WarningPrinter, labelsFailuresAsErrors)
{
    const auto printer = Loam::makeStrong<WarningPrinter>();
    testing::internal::CaptureStderr();
    EXPECT_TRUE(printer->failed("too hot"));
    EXPECT_TRUE(printer->warned("too hot"));
    EXPECT_TRUE(printer->failed("too hot"));
    printer->printRepeats();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tarn: error: too hot\n"
                                                      "tarn: warning: too hot\n"
                                                      "tarn: error: too hot (2 times in all)\n");
}

TEST(WarningPrinter, losesNoWarnings)
{
    const auto printer = Loam::makeStrong<WarningPrinter>();
    testing::internal::CaptureStderr();
    for (int i = 0; i < 10010; ++i)
        printer->warned(std::to_string(i));
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::ranges::count(printed, '\n'), 10010);
    EXPECT_TRUE(printed.ends_with("tarn: warning: 10009\n"));
}

} // namespace WarningPrinterTest
