#include <tarn/text/Messages.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace Tarn;

TEST(Messages, quotesNamesSoThatTheirEndShows)
{
    EXPECT_EQ(inQuotes("say \"so\"\n"), "\"say \\\"so\\\"\\n\"");
}

TEST(Messages, countsInSingularAndPlural)
{
    EXPECT_EQ(counted(0, "fault"), "0 faults");
    EXPECT_EQ(counted(1, "fault"), "1 fault");
    EXPECT_EQ(counted(2, "fault"), "2 faults");
}

TEST(Messages, findsTheNameThatWasMisspelt)
{
    const std::vector<std::string> names{"catalog", "magnitude", "time"};
    const struct {
        const char* name;
        const char* found;
    } cases[] = {
        {"magnitud", "magnitude"},   // a letter is missing
        {"magnnitude", "magnitude"}, // one too many
        {"mognitude", "magnitude"},  // another one
        {"cataolg", "catalog"},      // two are swapped
        {"Time", "time"},            // another case
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

TEST(Messages, prefersTheNameWithTheFewestMistakes)
{
    EXPECT_EQ(nearest("magnitud", {"magnetude", "magnitude", "megnitudo"}), "magnitude");
}

TEST(Messages, doesNotGuessAtEndlessNames)
{
    EXPECT_EQ(nearest(std::string(100000, 'a'), {std::string(100000, 'a')}), "");
}

TEST(Messages, offersWhatThereIsInstead)
{
    EXPECT_EQ(insteadOf("tme", {"time", "range"}), "; did you mean \"time\"?");
    EXPECT_EQ(insteadOf("depth", {"time", "range"}), "; there are time, range");
    EXPECT_EQ(insteadOf("depth", {"time"}), "; there is time");
    EXPECT_EQ(insteadOf("depth", {}), "");
    EXPECT_EQ(insteadOf("depth", std::vector<std::string>(13, "x")), "");
}
