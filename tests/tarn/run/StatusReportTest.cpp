#include <tarn/run/StatusReport.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

namespace StatusReportTest {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace {

std::string teller(const std::string& name, const std::string& kind, const std::string& text)
{
    return object(name, "Teller", "set = { kind = '" + kind + "', text = \"" + text + "\" }\n");
}

} // namespace

TEST(StatusReport, listsErrorsThenWarningsThenTheRest)
{
    const ProcessResult result =
        evaluate(teller("a", "info", "3 records") + teller("b", "warning", "old data") + teller("c", "error", "no data")
                 + teller("d", "info", "done") + teller("e", "error", "no hope"));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, EndsWith("net.toml: 5 objects, 1 step\n"
                                     "  c: error: no data\n"
                                     "  e: error: no hope\n"
                                     "  b: warning: old data\n"
                                     "  a: 3 records\n"
                                     "  d: done\n"));
}

TEST(StatusReport, changesTheExitStatusOnlyForErrors)
{
    EXPECT_EQ(evaluate(teller("a", "info", "fine")).status, 0);
    EXPECT_EQ(evaluate(teller("a", "warning", "odd")).status, 0);
    EXPECT_EQ(evaluate(teller("a", "error", "bad")).status, 1);
    EXPECT_EQ(evaluate(teller("a", "error", "")).status, 1) << "an error without a text is an error";
}

TEST(StatusReport, isPlainTextWithoutControlCharacters)
{
    const ProcessResult result = evaluate(teller("a", "info", "<B>2 &lt; 3</B>\\nnext\\u001b[31m"));
    EXPECT_THAT(result.err, EndsWith("  a: 2 < 3\n  a: next\\x1b[31m\n"));
}

TEST(StatusReport, showsTheFailureInsteadOfAnEarlierStatus)
{
    // Succeeds in the first step and fails in the others.
    const auto failing = [](const std::string& how) {
        return evaluate(clockInQuarters
                        + object("net", "FailingTeller", "set = { how = '" + how + "', status = 'all is well' }\n")
                        + object("sum", "Adder", "connect = { a = 'net.out' }\n")
                        + object("total", "Adder", "connect = { a = 'sum.sum' }\n"));
    };
    const ProcessResult thrown = failing("throw");
    EXPECT_EQ(thrown.status, 1);
    EXPECT_THAT(thrown.err, HasSubstr("the first in step 1\n  net: error: out of paint (2 objects wait for it)\n"));
    EXPECT_THAT(thrown.err, Not(HasSubstr("all is well")));
    EXPECT_THAT(failing("return").err, HasSubstr("\n  net: error: its update failed (2 objects wait for it)\n"));
    EXPECT_THAT(failing("report").err, HasSubstr("\n  net: error: no paint left (2 objects wait for it)\n"))
        << "the object reported the reason itself";
}

TEST(StatusReport, omitsGoodNewsOfObjectsThatWait)
{
    const ProcessResult result =
        evaluate(clockInQuarters + object("f", "Failing") + object("a", "Reteller", "connect = { a = 'f.out' }\n"));
    EXPECT_THAT(result.err, HasSubstr("  f: error: out of paint (1 object waits for it)\n"));
    EXPECT_THAT(result.err, Not(HasSubstr("read 42")));
}

TEST(StatusReport, countsFailuresBeyondAHundred)
{
    std::string network = clockInQuarters;
    for (int i = 0; i < 103; ++i)
        network += object("f" + std::to_string(i), "Failing");
    const ProcessResult result = evaluate(network);
    EXPECT_THAT(result.err, HasSubstr("  f99: error: out of paint\n  error: 3 more objects failed\n"));
    EXPECT_THAT(result.err, Not(HasSubstr("  f100:")));
}

TEST(StatusReport, omitsObjectsWithoutAMessage)
{
    const ProcessResult result = evaluate(teller("a", "info", "") + teller("b", "info", " \\n"));
    EXPECT_THAT(result.err, EndsWith("net.toml: 2 objects, 1 step\n"));
}

} // namespace StatusReportTest
