#include <tarn/text/Messages.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace MessagesTest {

using namespace Tarn;

TEST(Messages, quoteAndEscapeNames)
{
    EXPECT_EQ(inQuotes("say \"so\"\n"), "\"say \\\"so\\\"\\n\"");
}

TEST(Messages, countInSingularAndPlural)
{
    EXPECT_EQ(counted(0, "fault"), "0 faults");
    EXPECT_EQ(counted(1, "fault"), "1 fault");
    EXPECT_EQ(counted(2, "fault"), "2 faults");
}

TEST(Messages, findTheNameThatWasMisspelt)
{
    const std::vector<std::string> names{"catalog", "magnitude", "time"};
    const struct {
        const char* name;
        const char* found;
    } cases[] = {
        {"magnitud", "magnitude"},   // a letter is missing
        {"magnnitude", "magnitude"}, // an extra letter
        {"mognitude", "magnitude"},  // a wrong letter
        {"cataolg", "catalog"},      // two letters are swapped
        {"Time", "time"},            // the wrong case
        {"TIME", "time"},
        {"tiem", "time"},
        {"depth", ""},
        {"t", ""},
        {"", ""},
    };
    for (const auto& [name, found] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(nearest(name, names), found);
    }
}

TEST(Messages, preferTheNameWithTheFewestMistakes)
{
    EXPECT_EQ(nearest("magnitud", {"magnetude", "magnitude", "megnitudo"}), "magnitude");
}

TEST(Messages, suggestNothingForVeryLongNames)
{
    EXPECT_EQ(nearest(std::string(100000, 'a'), {std::string(100000, 'a')}), "");
}

TEST(Messages, suggestOrListTheAvailableNames)
{
    EXPECT_EQ(insteadOf("tme", {"time", "range"}), "; did you mean \"time\"?");
    EXPECT_EQ(insteadOf("depth", {"time", "range"}), "; available: time, range");
    EXPECT_EQ(insteadOf("depth", {"time"}), "; available: time");
    EXPECT_EQ(insteadOf("depth", {}), "");
    EXPECT_EQ(insteadOf("depth", std::vector<std::string>(13, "x")), "");
}

TEST(Messages, listAlternatives)
{
    EXPECT_EQ(alternatives({}), "");
    EXPECT_EQ(alternatives({"a"}), "\"a\"");
    EXPECT_EQ(alternatives({"a", "b", "c"}), "\"a\", \"b\" or \"c\"");
    EXPECT_EQ(alternatives(std::vector<std::string>(10, "x")),
              "\"x\", \"x\", \"x\", \"x\", \"x\", \"x\", \"x\", \"x\" or one of 2 more");
}

} // namespace MessagesTest
