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

TEST(WarningPrinter, printsMessagesAgainThatItForgot)
{
    const auto printer = Loam::makeStrong<WarningPrinter>();
    EXPECT_EQ(WarningPrinter::last(), printer.get());
    testing::internal::CaptureStderr();
    printer->warned("too hot");
    printer->warned("too hot");
    printer->failed("a failed: why");
    printer->failed("b failed: why");
    printer->forget();
    printer->printRepeats();
    printer->warned("too hot");
    printer->failed("b failed: why");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tarn: warning: too hot\n"
                                                      "tarn: error: a failed: why\n"
                                                      "tarn: warning: too hot\n"
                                                      "tarn: error: b failed: why\n");
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

TEST(WarningPrinter, printsWarningsOnOneLineWithoutControlCharacters)
{
    testing::internal::CaptureStderr();
    Loam::makeStrong<WarningPrinter>()->warned("a\nb\x1b[31m \\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tarn: warning: a\\nb\\x1b[31m \\n\n");
}

TEST(WarningPrinter, countsSimilarWarningsAtTheEnd)
{
    const auto printer = Loam::makeStrong<WarningPrinter>();
    testing::internal::CaptureStderr();
    for (int i = 0; i < 20010; ++i)
        printer->warned("value " + std::to_string(i));
    printer->printRepeats();
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::ranges::count(printed, '\n'), 21);
    EXPECT_TRUE(printed.ends_with("tarn: warning: value 19\ntarn: warning: 19990 more like: value 0\n"));
}

TEST(WarningPrinter, printsAReasonForWhichSeveralObjectsFailOnce)
{
    const auto printer = Loam::makeStrong<WarningPrinter>();
    testing::internal::CaptureStderr();
    printer->failed("Map \"a\" failed: no chart");
    printer->failed("Map \"b\" failed: no data");
    printer->failed("Globe \"c\" failed: no chart");
    printer->failed("Globe \"d\" failed: no chart");
    printer->failed("Globe \"d\" failed: no chart");
    printer->printRepeats();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tarn: error: Map \"a\" failed: no chart\n"
              "tarn: error: Map \"b\" failed: no data\n"
              "tarn: error: Globe \"c\", Globe \"d\" failed for the same reason as Map \"a\"\n");
}

TEST(WarningPrinter, listsAFewOfManyObjectsThatFailForTheSameReason)
{
    const auto printer = Loam::makeStrong<WarningPrinter>();
    testing::internal::CaptureStderr();
    for (char letter = 'a'; letter <= 'z'; ++letter)
        printer->failed(letter + std::string(" failed: no chart"));
    printer->printRepeats();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tarn: error: a failed: no chart\n"
              "tarn: error: b, c, d, e, f, g, h, i, j, k, l, m and 13 more failed for the same reason as a\n");
}

TEST(WarningPrinter, countsAFailureThatOneObjectRepeats)
{
    const auto printer = Loam::makeStrong<WarningPrinter>();
    testing::internal::CaptureStderr();
    printer->failed("Pump \"a\" failed: too hot");
    printer->failed("Pump \"a\" failed: too hot");
    printer->printRepeats();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tarn: error: Pump \"a\" failed: too hot\n"
                                                      "tarn: error: Pump \"a\" failed: too hot (2 times in all)\n");
}

TEST(HeldFailures, arePrintedAtTheEndUnlessTheyAreDropped)
{
    const auto printer = Loam::makeStrong<WarningPrinter>();
    testing::internal::CaptureStderr();
    {
        HeldFailures held;
        for (const char* const message : {"too hot", "too cold", "too wet", "hot, too"})
            EXPECT_TRUE(printer->failed(message));
        printer->warned("not held");
        held.drop("hot");
    }
    printer->failed("later");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tarn: warning: not held\n"
                                                      "tarn: error: too cold\n"
                                                      "tarn: error: too wet\n"
                                                      "tarn: error: later\n");
}

} // namespace WarningPrinterTest
