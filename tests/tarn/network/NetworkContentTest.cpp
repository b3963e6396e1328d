#include <tarn/network/NetworkContent.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <string>

namespace NetworkContentTest {

using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::string everything(const std::string& settings)
{
    return object("all", "Everything", settings);
}

// Returns the differences of two networks, which are read without faults.
std::string differences(const std::string& a, const std::string& b)
{
    const ProcessResult result = compare(a, b);
    EXPECT_EQ(result.status, result.out.empty() ? 0 : 1) << result.err;
    return result.out;
}

const std::string clockAndReader = clockInQuarters + object("t", "TimeReader");

} // namespace

TEST(NetworkContent, ignoresTheNotationOfValues)
{
    EXPECT_EQ(differences(object("x", "Adder", "set = { a = 5e4, b = '1.50' }\n"),
                          object("x", "Adder", "set.b = 1.5\nset.a = '50000'\n")),
              "");
    EXPECT_EQ(differences(object("x", "Adder", "set = { a = 5e4 }\n"), object("x", "Adder", "set = { a = 50001 }\n")),
              "b.toml:6:13: object \"x\", input \"a\": \"50001\" instead of \"50000\"\n");
}

TEST(NetworkContent, comparesValuesThatTheirTextFormDoesNotRestore)
{
    EXPECT_EQ(differences(everything("set.MultiRange = '[1;2;3]'\n"), everything("set.MultiRange = '[1; 2; 3]'\n")),
              "");
    EXPECT_EQ(differences(everything("set.MultiRange = '[1;2;3]'\n"),
                          everything("set.MultiRange = { text = '[1.000000;3.000000]', exact = '[1;2;3]' }\n")),
              "");
    EXPECT_EQ(differences(everything("set.MultiRange = '[1;2;3]'\n"), everything("set.MultiRange = '[1;2.5;3]'\n")),
              "b.toml:6:18: object \"all\", input \"MultiRange\": \"[1;2.5;3]\" instead of \"[1;2;3]\"\n");
}

TEST(NetworkContent, hasOneTextForEqualValuesThatNoTextRestores)
{
    const std::string ticket = object("x", "TicketReader", "set.ticket = 'a'\n");
    EXPECT_EQ(differences(ticket, ticket), "");
}

TEST(NetworkContent, treatsAnInputThatIsSetToItsDeclaredValueAsNotSet)
{
    EXPECT_EQ(differences(object("x", "Adder", "set = { a = 0, b = 0.0 }\n"), object("x", "Adder")), "");
    EXPECT_EQ(differences(object("x", "Adder", "set = { a = 0 }\n"), object("x", "Adder", "set.a = -0.0\n")),
              "b.toml:6:9: object \"x\", input \"a\": \"-0\" instead of the declared value\n");
}

TEST(NetworkContent, distinguishesAChoiceFromTheSameSelectionWithoutOne)
{
    // A run ends if the object does not offer the choice.
    const std::string chooser = object("x", "Chooser");
    EXPECT_EQ(differences(chooser, object("x", "Chooser", "set.case = 'plain'\n")), "");
    EXPECT_EQ(differences(chooser, object("x", "Chooser", "set.many = '{plain}'\n")),
              "b.toml:6:12: object \"x\", input \"many\": \"{plain}\" instead of the declared value\n");
}

TEST(NetworkContent, ignoresTheTextOfAConnectedInput)
{
    const std::string source = object("s", "Adder");
    EXPECT_EQ(differences(source + object("x", "Adder", "set.a = 1\nconnect.a = 's.sum'\n"),
                          source + object("x", "Adder", "connect.a = 's.sum'\n")),
              "");
    EXPECT_EQ(differences(clockAndReader, clockInQuarters + object("t", "TimeReader", "set.time = '7'\n")), "");
}

TEST(NetworkContent, equatesAutomaticAndExplicitConnections)
{
    EXPECT_EQ(
        differences(clockAndReader, clockInQuarters + object("t", "TimeReader", "connect.time = 'clock.GlobalTime'\n")),
        "");
}

TEST(NetworkContent, resolvesReferencesToObjectsWhoseNamesContainDots)
{
    // "a.in.a=b" is an input, so only the name of the object decides what "a.b.sum" is.
    const std::string reader = object("x", "Adder", "connect.a = 'a.b.sum'\n");
    EXPECT_EQ(differences(object("a.b", "Adder") + reader, reader + object("a.b", "Adder")), "");
}

TEST(NetworkContent, hasThePartnersThatTheOrderOfObjectsDecides)
{
    const std::string one = object("one", "GlobalTime", "set.time = '0[0,1]@0.5'\n");
    const std::string two = object("two", "GlobalTime", "set.time = '0[0,1]@0.5'\n");
    const std::string reader = object("t", "TimeReader");
    EXPECT_EQ(differences(one + reader + two, reader + one + two), "");
    EXPECT_EQ(
        differences(one + two + reader, two + one + reader),
        "b.toml: the time is provided by \"one\" instead of \"two\"\n"
        "b.toml:12:8: object \"t\", input \"time\": reads \"one.GlobalTime\" (connected automatically) instead of "
        "\"two.GlobalTime\" (connected automatically)\n");
}

TEST(NetworkContent, comparesEntriesOfUnknownTypesAsToml)
{
    const std::string known = object("x", "Adder", "connect.a = 'odd.out'\n");
    const ProcessResult equal = compare(object("odd", "Strange", "set = { a = 1, b = 'x' }\nmore = [1]\n") + known,
                                        known + object("odd", "Strange", "more = [ 1 ]\nset.b = \"x\"\nset.a = 1\n"));
    EXPECT_EQ(equal.out, "");
    EXPECT_EQ(equal.status, 2);
    const ProcessResult different = compare(object("odd", "Strange", "set.a = \"\\u001B\"\n"),
                                            object("odd", "Strange", "set.a = 50000\nset.'b c' = 1\n"));
    EXPECT_EQ(different.out, "b.toml:3:1: object \"odd\", set.\"b c\" = 1 instead of nothing\n"
                             "b.toml:3:1: object \"odd\", set.a = 50000 instead of \"\\u001B\"\n");
    EXPECT_THAT(different.err, StartsWith("a.toml:5:8: object \"odd\": no library has an object type \"Strange\""));
    EXPECT_THAT(different.err, HasSubstr("b.toml: 1 fault; unknown parts were compared as texts\n"));
}

TEST(NetworkContent, hasNoAutomaticConnectionsIfATypeIsUnknown)
{
    const std::string odd = object("odd", "Strange");
    const ProcessResult result = compare(
        clockAndReader, odd + clockInQuarters + object("t", "TimeReader", "connect.time = 'clock.GlobalTime'\n"));
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, HasSubstr("input \"time\": reads \"clock.GlobalTime\" instead of the declared value\n"));
}

TEST(NetworkContent, reportsASetUpThatFails)
{
    const ProcessResult result = compare(object("x", "Adder"), object("u", "Unfinishable"));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "b.toml:3:1: object \"u\" cannot be set up: no partner\n"
                          "b.toml: 1 fault; nothing was compared\n");
}

} // namespace NetworkContentTest
