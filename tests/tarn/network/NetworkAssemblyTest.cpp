#include <tarn/network/NetworkAssembly.hpp>

#include <tarn/network/NetworkParser.hpp>

#include "tarn/LoadedLibraries.hpp"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

namespace NetworkAssemblyTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class Assembly final : public NetworkAssembly {
public:
    using NetworkAssembly::NetworkAssembly;

    std::string textOf(const std::string& object, const std::string& input)
    {
        for (const Object& made : objects()) {
            if (made.object && made.object->Name() == object)
                return made.object->findSlot(input)->ownParameter()->DefaultValue()->Text();
        }
        return "no such object";
    }
};

class NetworkAssemblyTest : public LoadedLibraries {
protected:
    /// Assembles the network of these objects and columns, and returns its faults.
    std::vector<std::string> faultsOf(const std::string& text, const std::vector<std::string>& overrides = {},
                                      const std::vector<std::string>& missingLibraries = {})
    {
        m_assembly.reset();
        m_faults = Faults{"net"};
        m_file = parseNetwork("format = 1\n" + text, m_faults);
        m_assembly.emplace(m_file, m_faults);
        m_assembly->assemble(overrides, missingLibraries);
        return m_faults.lines();
    }

    std::size_t faultCount() const { return m_faults.size(); }

    const Network& network() const { return m_assembly->network(); }

    std::string textOf(const std::string& object, const std::string& input)
    {
        return m_assembly->textOf(object, input);
    }

private:
    Faults m_faults{"net"};
    NetworkFile m_file;
    std::optional<Assembly> m_assembly;
};

} // namespace

TEST_F(NetworkAssemblyTest, createsSetsAndConnectsObjectsInAnyOrder)
{
    EXPECT_THAT(faultsOf(R"(
[[object]]
name = "c"
type = "Adder"
connect = { a = "s.sum", b = "clock.GlobalTime.time" }
[[object]]
name = "s"
type = "Adder"
set = { a = 1, b = "2.5" }
[[object]]
name = "clock"
type = "GlobalTime"
[[column]]
title = "sum"
value = "c.sum"
[[column]]
title = "end"
value = "clock.GlobalTime.range"
)"),
                IsEmpty());
    EXPECT_EQ(network().objectCount, 3u);
    EXPECT_EQ(network().connected.size(), 2u);
    ASSERT_EQ(network().columns.size(), 2u);
    EXPECT_EQ(network().columns[0].title, "sum");
    EXPECT_EQ(network().columns[0].output.output->name(), "sum");
    EXPECT_EQ(network().columns[1].output.member, "range");
    EXPECT_EQ(textOf("s", "a"), "1");
    EXPECT_EQ(textOf("s", "b"), "2.5");
}

TEST_F(NetworkAssemblyTest, acceptsNamesWithDotsQuotesLineBreaksAndUmlauts)
{
    EXPECT_THAT(faultsOf(R"(
[[object]]
name = "a"
type = "Counter"
[[object]]
name = "a.b"
type = "Dotted"
set = { "in.a=b" = 5 }
[[object]]
name = "say \"ä\"\n"
type = "Adder"
connect = { a = "a.out", b = "a.b.out.range.time" }
[[column]]
title = "whole"
value = "a.b.out.range"
[[column]]
title = "part"
value = "a.b.out.range.range"
[[column]]
title = "sum"
value = "say \"ä\"\n.sum"
)",
                         {"a.b.in.a=b=7"}),
                IsEmpty());
    ASSERT_EQ(network().columns.size(), 3u);
    EXPECT_EQ(network().columns[0].output.member, "");
    EXPECT_EQ(network().columns[1].output.member, "range");
    EXPECT_EQ(network().columns[2].output.output->name(), "sum");
    EXPECT_EQ(textOf("a.b", "in.a=b"), "7");
}

TEST_F(NetworkAssemblyTest, appliesTheLastOverride)
{
    EXPECT_THAT(
        faultsOf("[[object]]\nname = 'a'\ntype = 'Echo'\nset = { text = 'file' }\n", {"a.text=first", "a.text=b.c=d"}),
        IsEmpty());
    EXPECT_EQ(textOf("a", "text"), "b.c=d");
}

TEST_F(NetworkAssemblyTest, reportsEveryFaultWithObjectAndSlot)
{
    const std::string a = "[[object]]\nname = 'a'\ntype = 'Adder'\n";              // lines 2 to 4
    const std::string clock = "[[object]]\nname = 'clock'\ntype = 'GlobalTime'\n"; // lines 5 to 7
    const struct {
        std::string text;
        std::vector<std::string> faults;
    } cases[] = {
        {"[[object]]\nname = 'a'\ntype = 'Addr'\n",
         {"net:4:8: object \"a\": no library has an object type \"Addr\"; did you mean \"Adder\"?"}},
        {"[[object]]\nname = 'a'\ntype = 'Volume'\n",
         {"net:4:8: object \"a\": no library has an object type \"Volume\""}},
        {"[[object]]\nname = 'a'\ntype = 'Unmakable'\n",
         {"net:4:8: object \"a\": an object of type \"Unmakable\" cannot be made: no licence"}},
        {a + a, {"net:6:8: object \"a\": the name is used twice, first at net:3:8"}},
        {a + "set = { c = 1 }\n", {"net:5:9: object \"a\": Adder has no input \"c\"; available: a, b"}},
        {a + "set = { sum = 1 }\n", {"net:5:9: object \"a\": Adder has no input \"sum\"; that is an output"}},
        {a + "set = { a = 'much' }\n",
         {"net:5:13: object \"a\", input \"a\": the text \"much\" is refused, expected a value of type number"}},
        {a + clock + "set = { time = true, tim = 1 }\n",
         {"net:8:16: object \"clock\", input \"time\": the text \"true\" is refused, expected a value of type time, "
          "for example \"0.5[0,1]@0.1\"",
          "net:8:22: object \"clock\": GlobalTime has no input \"tim\"; did you mean \"time\"?"}},
        {a + clock + "connect = { time = 'a.sum' }\n",
         {"net:8:20: object \"clock\", input \"time\": \"a.sum\" does not fit: it gives number where time is "
          "expected"}},
        {a + "connect = { a = 'clock.GlobalTime.dim' }\n" + clock,
         {"net:5:17: object \"a\", input \"a\": \"clock.GlobalTime.dim\" does not fit: values of type time have no "
          "component \"dim\" (available: time, range, dt)"}},
        {a + "connect = { a = 'clock.GlobalTime.range' }\n" + clock,
         {"net:5:17: object \"a\", input \"a\": \"clock.GlobalTime.range\" does not fit: it gives range where number "
          "is expected"}},
        {a + "connect = { a = 'clock.' }\n" + clock,
         {"net:5:17: object \"a\", input \"a\": object \"clock\" of type GlobalTime has no output \"\"; available: "
          "GlobalTime"}},
        {a + "connect = { a = 'clock.GlobalTime.' }\n" + clock,
         {"net:5:17: object \"a\", input \"a\": found nothing after the last dot, expected the name of "
          "a component"}},
        {a + "connect = { c = 'a.sum', a = 'sum', b = 'a.b' }\n",
         {"net:5:13: object \"a\": Adder has no input \"c\"; available: a, b",
          "net:5:30: object \"a\", input \"a\": found \"sum\", expected \"OBJECT.OUTPUT\"",
          "net:5:41: object \"a\", input \"b\": object \"a\" of type Adder has no output \"b\"; that is an input"}},
        {a + "connect = { a = 'clok.GlobalTime.time', b = 'clock.Globaltime' }\n" + clock,
         {"net:5:17: object \"a\", input \"a\": no object is named \"clok\"; did you mean \"clock\"?",
          "net:5:45: object \"a\", input \"b\": object \"clock\" of type GlobalTime has no output \"Globaltime\"; did "
          "you mean \"GlobalTime\"?"}},
        {a
             + "[[column]]\ntitle = 'x'\nvalue = 'b.sum'\n[[column]]\ntitle = 'y'\nvalue = 'a.sum.time'\n"
               "[[column]]\ntitle = 'z'\nvalue = 'a.summ'\n[[column]]\ntitle = 'w'\nvalue = 'sum'\n",
         {"net:7:9: column \"x\": no object is named \"b\"",
          "net:10:9: column \"y\": values of type number have no component \"time\"",
          "net:13:9: column \"z\": object \"a\" of type Adder has no output \"summ\"; did you mean \"sum\"?",
          "net:16:9: column \"w\": found \"sum\", expected \"OBJECT.OUTPUT\""}},
        {clock + "[[column]]\ntitle = 'x'\nvalue = 'clock.GlobalTime.tme'\n",
         {"net:7:9: column \"x\": values of type time have no component \"tme\"; did you mean \"time\"?"}},
        {a + "[[column]]\ntitle = 'x'\nvalue = 'a.sum'\n[[column]]\nvalue = 'b.sum'\n",
         {"net:8:1: column number 2: missing key \"title\"", "net:9:9: column number 2: no object is named \"b\""}},
    };
    for (const auto& [text, faults] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(faultsOf(text), faults);
    }
}

TEST_F(NetworkAssemblyTest, doesNotReportConnectionsToAnObjectThatCannotBeCreated)
{
    EXPECT_THAT(faultsOf("[[object]]\nname = 'a'\ntype = 'Volume'\nset = { x = 1 }\n"
                         "[[object]]\nname = 'b'\ntype = 'Adder'\nconnect = { a = 'a.sum', c = 'a.sum' }\n"
                         "[[column]]\ntitle = 't'\nvalue = 'a.sum'\n",
                         {"a.x=1"}, {"volumes", "more"}),
                ElementsAre("net:4:8: object \"a\": no library has an object type \"Volume\" (not loaded: "
                            "\"volumes\", \"more\")",
                            "net:9:26: object \"b\": Adder has no input \"c\"; available: a, b"));
}

TEST_F(NetworkAssemblyTest, refusesInvalidOverrides)
{
    EXPECT_THAT(
        faultsOf("[[object]]\nname = 'first'\ntype = 'Adder'\n"
                 "[[object]]\nname = 'second'\ntype = 'Adder'\nconnect = { a = 'first.sum' }\n",
                 {"frist.a=1", "third.a=1", "first.c=1", "first.sum=1", "first.a=x", "second.a=1", "first.b=2"}),
        ElementsAre("--set=frist.a=1: no object is named \"frist\"; did you mean \"first\"?",
                    "--set=third.a=1: no object is named \"third\"",
                    "--set=first.c=1: Adder has no input \"c\"; available: a, b",
                    "--set=first.sum=1: Adder has no input \"sum\"; available: a, b",
                    "--set=second.a=1: the input reads \"first.sum\", so a text would have no effect",
                    "--set=first.a=x: the text \"x\" is refused, expected a value of type number"));
}

TEST_F(NetworkAssemblyTest, overridesInputsOfObjectsWhoseNamesContainEqualsSigns)
{
    EXPECT_THAT(faultsOf("[[object]]\nname = 'a=b'\ntype = 'Adder'\n", {"a=b.a=1.5", "a=c.a=1"}),
                ElementsAre("--set=a=c.a=1: no object is named \"a=c\"; did you mean \"a=b\"?"));
    EXPECT_EQ(textOf("a=b", "a"), "1.5");
}

TEST_F(NetworkAssemblyTest, startsOverridesFromTheDeclaredValue)
{
    const std::string file =
        "[[object]]\nname = 'p'\ntype = 'Picker'\nset = { one = 'Asia@Asia|', many = '{a}@{a}{b}' }\n";
    EXPECT_THAT(faultsOf(file, {"p.one=Africa@Africa|Europe|", "p.many={c}"}), IsEmpty());
    EXPECT_EQ(textOf("p", "one"), "Africa@Africa|Europe|") << "the list of the file would refuse this choice";
    EXPECT_EQ(textOf("p", "many"), "{c}@") << "not with the choices of the file";
    EXPECT_THAT(faultsOf(file, {"p.one=Africa@Africa|", "p.one=Oceania@Oceania|"}), IsEmpty());
    EXPECT_EQ(textOf("p", "one"), "Oceania@Oceania|") << "of two overrides, the last one counts";
}

TEST_F(NetworkAssemblyTest, refusesNumbersThatTheInputWouldTruncate)
{
    const auto setting = [](const std::string& number) {
        return "[[object]]\nname = 'p'\ntype = 'Picker'\nset = { count = " + number + " }\n";
    };
    EXPECT_THAT(faultsOf(setting("1.5")), ElementsAre("net:5:17: object \"p\", input \"count\": the number 1.5 would "
                                                      "become 1, expected a value of type integer"));
    EXPECT_THAT(faultsOf(setting("1e300")), SizeIs(1));
    for (const char* number : {"12", "-3", "100000.0", "1e5", "0x10"}) {
        EXPECT_THAT(faultsOf(setting(number)), IsEmpty()) << number;
    }
    EXPECT_EQ(textOf("p", "count"), "16");
    EXPECT_THAT(faultsOf(setting("'1.5'")), IsEmpty()) << "a text is read as the type reads it";
    EXPECT_EQ(textOf("p", "count"), "1");
    EXPECT_THAT(faultsOf("[[object]]\nname = 'a'\ntype = 'Adder'\nset = { a = 1.5, b = -0.0 }\n"), IsEmpty());
    EXPECT_EQ(textOf("a", "b"), "-0");
}

TEST_F(NetworkAssemblyTest, readsTheExactTextAndRefusesADisplayedTextThatDoesNotMatch)
{
    const auto network = [](const std::string& shown) {
        return "[[object]]\nname = 'all'\ntype = 'Everything'\nset.MultiRange = { text = '" + shown
               + "', exact = '[1;2;3;4]' }\n";
    };
    EXPECT_THAT(faultsOf(network("[1.000000;4.000000]")), IsEmpty());
    EXPECT_EQ(textOf("all", "MultiRange"), "[1.000000;4.000000]");
    EXPECT_THAT(faultsOf(network("[1.000000;5.000000]")),
                ElementsAre("net:5:27: object \"all\", input \"MultiRange\": the text \"[1.000000;5.000000]\" does not "
                            "match \"[1.000000;4.000000]\", which the exact text gives; remove one of the two"));
}

TEST_F(NetworkAssemblyTest, namesAFewOfManyMissingLibraries)
{
    EXPECT_THAT(faultsOf("[[object]]\nname = 'a'\ntype = 'Volume'\n", {}, {"a", "b", "c", "d", "e"}),
                ElementsAre("net:4:8: object \"a\": no library has an object type \"Volume\" (not loaded: "
                            "\"a\", \"b\", \"c\" and 2 more)"));
}

TEST_F(NetworkAssemblyTest, countsTenThousandFaults)
{
    std::string text;
    for (int i = 0; i < 10000; ++i)
        text += "[[object]]\nname = 'object " + std::to_string(i) + "'\ntype = 'Adder'\nconnect = { a = 'objct "
                + std::to_string(i) + ".sum' }\n";
    const std::vector<std::string> faults = faultsOf(text);
    EXPECT_EQ(faultCount(), 10000u);
    ASSERT_EQ(faults.size(), 21u);
    EXPECT_EQ(faults[0], "net:5:17: object \"object 0\", input \"a\": no object is named \"objct 0\"; did you mean "
                         "\"object 0\"?");
    EXPECT_EQ(faults[20], "net: 9980 more like: object \"object 0\", input \"a\": no object is named \"objct 0\"; did "
                          "you mean \"object 0\"?");
}

TEST_F(NetworkAssemblyTest, requiresTheLibraryOfATypeThatSeveralLibrariesDefine)
{
    Libraries rivals{{ODD_LIBRARIES_FOLDER}};
    ASSERT_TRUE(rivals.load("rivalobjects"));
    EXPECT_THAT(faultsOf("[[object]]\nname = 'one'\ntype = 'Adder'\n"),
                ElementsAre("net:4:8: object \"one\": several libraries have different object types \"Adder\"; write "
                            "\"testobjects:Adder\" or \"rivalobjects:Adder\""));
    EXPECT_THAT(faultsOf("[[object]]\nname = 'one'\ntype = 'testobjects:Adder'\nset = { a = 1 }\n"
                         "[[object]]\nname = 'two'\ntype = 'Echo'\n"),
                IsEmpty());
    EXPECT_THAT(faultsOf("[[object]]\nname = 'one'\ntype = 'rivalobjects:Adder'\nset = { a = 1 }\n"),
                ElementsAre("net:5:9: object \"one\": rivalobjects:Adder has no input \"a\""));
    faultsOf("");
    EXPECT_TRUE(rivals.unload());
}

} // namespace NetworkAssemblyTest
