#include <tarn/study/CaseRecord.hpp>

#include <gmock/gmock.h>

#include <string>

namespace CaseRecordTest {

using Tarn::CaseResult;
using Tarn::recordOf;
using Tarn::resultOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

TEST(CaseRecord, isReadAsItWasWritten)
{
    const CaseResult result{.number = 9'007'199'254'740'993,
                            .rows = {{"1.5", std::nullopt, ""}, {"a\n\"b\"", "\xC3\xA4", std::string("\0", 1)}},
                            .hasFailed = true,
                            .messages = {"error: lost"},
                            .printed = {"a.b: 1", "\xFF\x80 bytes"}};
    const std::string record = recordOf(result);
    EXPECT_EQ(*resultOf(record), result);
    EXPECT_EQ(*resultOf(recordOf({})), CaseResult{});
}

TEST(CaseRecord, isOneLine)
{
    const std::string record = recordOf({.rows = {{"a\nb"}}, .messages = {"c\nd"}});
    EXPECT_THAT(record, EndsWith("}\n"));
    EXPECT_THAT(record.substr(0, record.size() - 1), Not(HasSubstr("\n")));
}

TEST(CaseRecord, isRefusedIfItIsDamaged)
{
    const std::string record = recordOf({.rows = {{"1"}}, .printed = {"\xFF"}});
    EXPECT_FALSE(resultOf(record.substr(0, record.size() / 2)));
    EXPECT_FALSE(resultOf(""));
    EXPECT_FALSE(resultOf("{}"));
    EXPECT_FALSE(resultOf(R"({"case":-1,"failed":false,"rows":[[1]],"messages":[],"printed":[]})"));
    EXPECT_FALSE(resultOf(R"({"case":1,"failed":false,"rows":[],"messages":[],"printed":[{"bytes":"xy"}]})"));
}

} // namespace CaseRecordTest
