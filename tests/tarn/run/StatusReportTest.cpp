#include <tarn/run/StatusReport.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

namespace StatusReportTest {

using testing::EndsWith;
using testing::HasSubstr;

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

TEST(StatusReport, omitsObjectsWithoutAMessage)
{
    const ProcessResult result = evaluate(teller("a", "info", "") + teller("b", "info", " \\n"));
    EXPECT_THAT(result.err, EndsWith("net.toml: 2 objects, 1 step\n"));
}

} // namespace StatusReportTest
