#include <tarn/study/StudyReport.hpp>

#include <gmock/gmock.h>

#include <string>

namespace StudyReportTest {

using Tarn::CaseList;
using Tarn::StudyReport;
using testing::ElementsAre;
using testing::SizeIs;

TEST(CaseList, joinsConsecutiveNumbers)
{
    CaseList list;
    EXPECT_EQ(list.text(), "");
    for (const std::uint64_t number : {0u, 1u, 2u, 5u, 7u, 8u})
        list.add(number);
    EXPECT_EQ(list.text(), "0-2, 5, 7, 8");
    EXPECT_EQ(list.size(), 6u);
}

TEST(CaseList, countsTheLastOfManyNumbers)
{
    CaseList list;
    for (std::uint64_t i = 0; i < 1000; ++i)
        list.add(2 * i);
    list.add(1999);
    EXPECT_EQ(list.text(), "0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22 and 989 more");
    EXPECT_EQ(list.size(), 1001u);
}

TEST(StudyReport, listsEachMessageOnceWithItsCases)
{
    StudyReport report;
    report.add({.number = 0, .rows = {{"1"}, {"2"}}, .messages = {"  a: warning: dim"}});
    report.add({.number = 1, .rows = {{"1"}}, .hasFailed = true, .messages = {"  a: warning: dim", "error: lost"}});
    report.add({.number = 2, .hasFailed = true, .messages = {"  a: warning: dim", "error: lost", "error: lost"}});
    report.add({.number = 3, .messages = {"  a: warning: dim", "  b: warning: late"}});
    EXPECT_EQ(report.steps(), 3u);
    EXPECT_EQ(report.failed().text(), "1, 2");
    EXPECT_THAT(report.lines(), ElementsAre("  a: warning: dim (all cases)", "  error: lost (cases 1, 2)",
                                            "  b: warning: late (case 3)"));
}

TEST(StudyReport, countsTheLastOfManyMessages)
{
    StudyReport report;
    for (std::uint64_t i = 0; i < 250; ++i)
        report.add({.number = i, .messages = {"message " + std::to_string(i)}});
    EXPECT_THAT(report.lines(), SizeIs(101));
    EXPECT_EQ(report.lines().back(), "  150 more messages");
}

} // namespace StudyReportTest
