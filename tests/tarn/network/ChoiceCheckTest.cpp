#include <tarn/network/ChoiceCheck.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <string>

namespace ChoiceCheckTest {

using testing::HasSubstr;

namespace {

std::string picker(const std::string& settings)
{
    return object("places", "Picker", "set = { offered = 'Africa,Asia,Europe', " + settings + " }\n")
           + column("chosen", "places.chosen");
}

} // namespace

TEST(ChoiceCheck, refusesAChoiceThatTheObjectDoesNotOffer)
{
    const ProcessResult result = evaluate(picker("one = 'Asai@Asai|'"));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "step,chosen\n") << "no row with another choice";
    EXPECT_EQ(result.err,
              "net.toml:6:47: object \"places\", input \"one\": \"Asai\" is not among the 3 choices; did you "
              "mean \"Asia\"?\n"
              "net.toml: 1 fault; the evaluation ended in step 0\n");
}

TEST(ChoiceCheck, refusesEachStringOfAMultipleChoiceThatIsNotOffered)
{
    const ProcessResult result = evaluate(picker("many = '{Afrika}{Asia}{Mu}'"));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err,
                HasSubstr("input \"many\": \"Afrika\" is not among the 3 choices; did you mean \"Africa\"?\n"));
    EXPECT_THAT(result.err, HasSubstr("input \"many\": \"Mu\" is not among the 3 choices\n"));
    EXPECT_THAT(result.err, HasSubstr("net.toml: 2 faults;"));
}

TEST(ChoiceCheck, appliesToOverrides)
{
    const ProcessResult result = evaluate(picker("one = 'Asia@Asia|'"), {"--set=places.one=Erope@Erope|"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err,
                HasSubstr("--set=places.one=Erope@Erope|: \"Erope\" is not among the 3 choices; did you mean "
                          "\"Europe\"?\n"));
    EXPECT_EQ(evaluate(picker("one = 'Asai@Asai|'"), {"--set=places.one=Asia@Asia|"}).out, "step,chosen\n0,Asia\n");
}

TEST(ChoiceCheck, acceptsOfferedChoicesAndObjectsWithoutData)
{
    EXPECT_EQ(evaluate(picker("one = 'Asia@Asia|', many = '{Asia}{Africa}'")).out, "step,chosen\n0,Asia\n");
    EXPECT_EQ(evaluate(picker("many = '@{Asia}'")).status, 0) << "nothing is selected";
    EXPECT_EQ(evaluate(object("places", "Picker", "set = { one = 'Asai@Asai|' }\n")).status, 0);
}

} // namespace ChoiceCheckTest
