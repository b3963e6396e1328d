#include <tarn/network/Session.hpp>

#include <tarn/run/Context.hpp>

#include <trellis/VObjectCreator.hpp>

#include <loam/FileError.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <limits>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace SessionTest {

using Tarn::FaultKind;
using Tarn::Session;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

static_assert(!std::is_copy_constructible_v<Tarn::Session>);
static_assert(std::is_nothrow_move_constructible_v<Tarn::Session>);

namespace {

const std::string head = "format = 1\nlibraries = ['testobjects']\n";

ProcessResult check(const std::string& network)
{
    const TestFolder folder;
    ProcessResult result = runTarn({"check", folder.write("net.toml", network)});
    // Messages contain the path of the folder, which differs each time.
    for (auto found = result.err.find(folder.path() + '/'); found != std::string::npos;
         found = result.err.find(folder.path() + '/'))
        result.err.erase(found, folder.path().size() + 1);
    return result;
}

} // namespace

TEST(Session, resolvesRelativeNamesInTheFolderOfTheNetwork)
{
    const TestFolder folder;
    folder.write("project/data/greeting.txt", "hello\n");
    const std::string network = head
                                + "[[object]]\nname = 'file'\ntype = 'FileReader'\n"
                                  "set = { file = 'data/greeting.txt' }\n"
                                  "[[column]]\ntitle = 'line'\nvalue = 'file.line'\n";
    folder.write("project/net.toml", network);
    // The name of the table is relative to the folder in which the program was started.
    const ProcessResult result = runTarn({"run", "project/net.toml", "--table=table.csv"}, {{}, "cd " + folder.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "project/net.toml: 1 object, 1 step\n");
    EXPECT_EQ(contentOf(folder.file("table.csv")), "step,line\n0,hello\n");
}

TEST(Session, findsLibrariesBesideTheNetwork)
{
    for (const std::string name : {"testobjects", "lib/testobjects"}) {
        SCOPED_TRACE(name);
        const TestFolder own;
        own.write(name + ".so", contentOf(TEST_OBJECTS_FOLDER "/testobjects.so"));
        const ProcessResult result =
            runTarn({"check", own.write("net.toml", head + "[[object]]\nname = 'a'\ntype = 'Adder'\n")},
                    {{}, "export TARN_LIBRARIES="});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.err, HasSubstr("1 object, 0 connections, no faults\n"));
    }
}

TEST(Session, reportsLibrariesThatCannotBeLoadedAndContinues)
{
    const TestFolder folder;
    folder.write("broken.so", "This is a text.");
    const std::string file =
        folder.write("net.toml", "format = 1\nlibraries = ['broken', 'none', 'testobjects', 'none']\n"
                                 "[[object]]\nname = 'a'\ntype = 'Adder'\nset = { a = 'x' }\n");
    const ProcessResult result = runTarn({"check", file});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr(file + ":2:14: library \"broken\" cannot be loaded: " + folder.file("broken.so")
                                      + ": the file is not a shared library\n"));
    EXPECT_THAT(result.err, HasSubstr(file + ":2:24: library \"none\" was not found: no file none.so in "));
    EXPECT_THAT(result.err, HasSubstr(file + ":6:13: object \"a\", input \"a\": the text \"x\" is refused"));
    EXPECT_THAT(result.err, HasSubstr(file + ": 3 faults\n"));
}

TEST(Session, refusesEmptyAndTruncatedFiles)
{
    EXPECT_EQ(check("").err, "net.toml:1:1: the file holds no network, expected format = 1\nnet.toml: 1 fault\n");
    EXPECT_EQ(check("").status, 2);
    EXPECT_EQ(check("format = 1\n[[object]]\nname = 'a'\ntype = 'Ad").status, 2);
}

TEST(Session, refusesATimeWithAnInvalidNumberOfSteps)
{
    const struct {
        const char* time;
        const char* fault;
    } cases[] = {
        {"0[0,inf]@1", "the time 0[0,inf]@1 has inf steps, expected 1 or more, 1000000000000000 at most"},
        {"0[0,nan]@1", "the time 0[0,nan]@1 has nan steps, expected 1 or more, 1000000000000000 at most"},
        {"0[0,10]@-1", "the time 0[0,10]@-1 has -9 steps, expected 1 or more, 1000000000000000 at most"},
        {"0[0,1]@1e-16", "steps, expected 1 or more, 1000000000000000 at most"},
        {"0[0,1]@1e-12",
         "the time 0[0,1]@1e-12 has 1000000000001 steps, more than 1000000000; --steps=N evaluates the first N "
         "of them"},
    };
    for (const auto& [time, fault] : cases) {
        SCOPED_TRACE(time);
        const ProcessResult result =
            check("format = 1\n[[object]]\nname = 'clock'\ntype = 'GlobalTime'\nset = { time = '" + std::string(time)
                  + "' }\n");
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err,
                    AllOf(testing::StartsWith("net.toml:5:16: object \"clock\", input \"time\": "), HasSubstr(fault)));
    }
}

TEST(Session, countsTheStepsOfALongTimeExactly)
{
    const TestFolder folder;
    const std::string file = folder.write(
        "net.toml", "format = 1\n[[object]]\nname = 'clock'\ntype = 'GlobalTime'\nset = { time = '0[0,4e14]@1' }\n"
                    "[[column]]\ntitle = 'time'\nvalue = 'clock.GlobalTime.time'\n");
    EXPECT_EQ(runTarn({"run", file, "--steps=3", "--table=-"}).out, "step,time\n0,0\n1,1\n2,2\n");
}

TEST(Session, keepsLibrariesInMemoryWhileAnObjectIsHeld)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", head + "[[object]]\nname = 'vine'\ntype = 'Clinging'\n");
    const ProcessResult result = runTarn({"run", file});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err,
                HasSubstr("The library \"testobjects\" stays in memory because Clinging \"vine\" is still in use\n"));
    EXPECT_THAT(runTarn({"check", file}).err, Not(HasSubstr("stay in memory")));
}

TEST(Session, loadsTenThousandObjects)
{
    std::string network = head;
    for (int i = 0; i < 10000; ++i)
        network += "[[object]]\nname = 'object " + std::to_string(i) + "'\ntype = 'Adder'\n";
    EXPECT_EQ(check(network).err, "net.toml: 10000 objects, 0 connections, no faults\n");
}

namespace {

// The sessions of this test search the folder of the test objects.
class OpenSession : public testing::Test {
protected:
    OpenSession() { ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER ":" ODD_LIBRARIES_FOLDER, 1); }
    ~OpenSession() override { ::unsetenv("TARN_LIBRARIES"); }

    static Session read(const std::string& network, const Tarn::LoadOptions& options = {})
    {
        return Session::read(networkHead + network, "net.toml", ".", options);
    }

    static std::string reasonOf(const Loam::Result<void>& result) { return result ? "none" : result.reason(); }
};

} // namespace

TEST_F(OpenSession, hasFaultsWithPlacesAndKinds)
{
    const struct {
        std::string network;
        Tarn::LoadOptions options;
        FaultKind kind;
        Tarn::Place place;
    } cases[] = {
        {"[[object]", {}, FaultKind::Syntax, {3, 10}},
        {"colour = 1\n", {}, FaultKind::Content, {3, 1}},
        {object("a", "Adder", "set = { a = 'x' }\n"), {}, FaultKind::Input, {6, 13}},
        {object("a", "Adder", "set = { none = 1 }\n"), {}, FaultKind::Input, {6, 9}},
        {object("a", "None"), {}, FaultKind::Type, {5, 8}},
        {object("a", "Unmakable"), {}, FaultKind::Object, {5, 8}},
        {object("a", "Adder", "connect = { a = 'b.sum' }\n"), {}, FaultKind::Connection, {6, 17}},
        {object("a", "Adder") + column("x", "a.none"), {}, FaultKind::Column, {8, 9}},
        {object("a", "Adder"), {.chart = "globe"}, FaultKind::Chart, {}},
        {object("a", "Adder"), {.overrides = {"a.c=1"}}, FaultKind::Option, {}},
        {object("a", "GlobalTime", "set = { time = '0[0,inf]@1' }\n"), {}, FaultKind::Time, {6, 16}},
    };
    for (const auto& [network, options, kind, place] : cases) {
        SCOPED_TRACE(network);
        const Session session = read(network, options);
        ASSERT_EQ(session.faults().size(), 1u);
        const Tarn::Fault& fault = session.faults().all().front();
        EXPECT_EQ(fault.kind, kind);
        EXPECT_EQ(fault.place, place);
        EXPECT_NE(fault.message, "");
        EXPECT_THAT(session.objects(), testing::IsEmpty());
    }
    const Session session = Session::read("format = 1\nlibraries = ['none']\n", "net.toml", ".");
    EXPECT_EQ(session.faults().all().front().kind, FaultKind::Library);
}

TEST_F(OpenSession, throwsOnlyForAFileThatCannotBeRead)
{
    EXPECT_THROW(Session::load("/nowhere/net.toml"), Loam::FileError);
}

TEST_F(OpenSession, isBuiltAndSavedAsTheSameNetworkThatAFileDescribes)
{
    Session built;
    EXPECT_TRUE(built.loadLibrary("testobjects"));
    EXPECT_TRUE(built.create("Adder", "first"));
    EXPECT_TRUE(built.create("Adder", "second"));
    EXPECT_TRUE(built.connect("first.sum", "second.b"));
    EXPECT_TRUE(built.setText("first.b", "2"));
    EXPECT_TRUE(built.set("first.a", 1.5));
    EXPECT_TRUE(built.addColumn("sum", "second.sum"));
    const std::string expected = "format = 1\n"
                                 "libraries = [\"testobjects\"]\n"
                                 "\n"
                                 "[[object]]\n"
                                 "name = \"first\"\n"
                                 "type = \"Adder\"\n"
                                 "set.a = 1.5\n"
                                 "set.b = 2\n"
                                 "\n"
                                 "[[object]]\n"
                                 "name = \"second\"\n"
                                 "type = \"Adder\"\n"
                                 "connect.b = \"first.sum\"\n"
                                 "\n"
                                 "[[column]]\n"
                                 "title = \"sum\"\n"
                                 "value = \"second.sum\"\n";
    EXPECT_EQ(*built.savedText(), expected);
    const Session again = Session::read(expected, "again", ".");
    EXPECT_TRUE(again.faults().empty());
    EXPECT_EQ(*again.savedText(), expected);
    EXPECT_THAT(again.columns(), ElementsAre("sum"));
}

TEST_F(OpenSession, savesTheBytesThatConvertWrites)
{
    const TestFolder folder;
    const std::string file = folder.write(
        "net.toml", networkHead + object("c", "Chooser", "set = { case = 'cubic', one = 'plain@plain|a|' }\n")
                        + object("z", "Adder", "set = { b = 0.10, a = 1e3 }\nconnect = { a = 'y.sum' }\n")
                        + object("e", "Everything", "set = { 'double[]' = '1,2,3', float = 0.5 }\n")
                        + object("clock", "GlobalTime", "set = { time = '0[0,1]@0.5' }\n") + object("y", "Adder")
                        + column("x", "clock.GlobalTime.time"));
    ASSERT_EQ(runTarn({"convert", file, folder.file("canonical.toml")}).status, 0);
    const Session session = Session::load(file);
    ASSERT_TRUE(session.faults().empty()) << session.faults().lines().front();
    EXPECT_EQ(*session.savedText(), contentOf(folder.file("canonical.toml")));
    EXPECT_TRUE(session.save(folder.file("saved.toml")));
    EXPECT_EQ(contentOf(folder.file("saved.toml")), contentOf(folder.file("canonical.toml")));
}

TEST_F(OpenSession, savesTheTextsThatReplaceThoseOfTheFile)
{
    const Session session = read(object("a", "Adder", "set = { a = 1, b = 2 }\n"), {.overrides = {"a.b=3"}});
    EXPECT_THAT(*session.savedText(), HasSubstr("set.a = 1\nset.b = 3\n"));
}

TEST_F(OpenSession, savesTheLastOfTheTextsAndValuesThatAnInputGot)
{
    Session session = read(object("a", "Adder", "set.a = 7\n"));
    EXPECT_TRUE(session.set("a.a", 1.5));
    EXPECT_THAT(*session.savedText(), HasSubstr("set.a = 1.5\n"));
    EXPECT_TRUE(session.setText("a.a", "2"));
    EXPECT_THAT(*session.savedText(), HasSubstr("set.a = 2\n"));
    EXPECT_TRUE(session.set("a.a", std::numeric_limits<double>::quiet_NaN()));
    EXPECT_THAT(*session.savedText(), HasSubstr("set.a = nan\n"));
}

TEST_F(OpenSession, refusesImpossibleChangesWithAReasonAndStaysTheSame)
{
    Session session = read(object("a", "Adder", "connect = { a = 'b.sum' }\n") + object("b", "Adder")
                           + object("e", "Echo") + column("sum", "a.sum"));
    ASSERT_TRUE(session.faults().empty());
    const std::string before = *session.savedText();
    EXPECT_EQ(reasonOf(session.loadLibrary("none")).substr(0, 28), "library \"none\" was not found");
    EXPECT_EQ(reasonOf(session.setText("a", "1")), "found \"a\", expected OBJECT.INPUT");
    EXPECT_EQ(reasonOf(session.setText("A.a", "1")), "no object is named \"A\"; did you mean \"a\"?");
    EXPECT_EQ(reasonOf(session.setText("a.sum", "1")), "Adder \"a\" has no input \"sum\"; that is an output");
    EXPECT_EQ(reasonOf(session.setText("a.b", "x")), "the text \"x\" is refused, expected a value of type number");
    EXPECT_EQ(reasonOf(session.setText("a.a", "1")), "the input reads \"b.sum\", so a value would have no effect");
    EXPECT_EQ(reasonOf(session.set("a.b", std::string("x"))), "found a value of type text, expected type number");
    EXPECT_EQ(reasonOf(session.create("Ader", "c")),
              "object \"c\": no library has an object type \"Ader\"; did you mean \"Adder\"?");
    EXPECT_EQ(reasonOf(session.create("Adder", "a")), "the name \"a\" is taken");
    EXPECT_EQ(reasonOf(session.create("Adder", "")),
              "found the name \"\", expected one that is not empty and valid UTF-8");
    EXPECT_THAT(reasonOf(session.create("Unmakable", "c")), HasSubstr("object \"c\": an object of type"));
    EXPECT_THAT(reasonOf(session.create("Unfinishable", "c")), HasSubstr("object \"c\" cannot be set up"));
    EXPECT_EQ(reasonOf(session.remove("c")), "no object is named \"c\"; available: a, b, e");
    EXPECT_THAT(reasonOf(session.connect("e.out", "a.b")), HasSubstr("text"));
    EXPECT_EQ(reasonOf(session.connect("b.sum.x", "a.b")), "values of type number have no component \"x\"");
    EXPECT_EQ(reasonOf(session.disconnect("a.b")), "the input is not connected");
    EXPECT_EQ(reasonOf(session.selectChart("globe")), "no object depends on a chart");
    EXPECT_EQ(*session.savedText(), before);
    EXPECT_THAT(session.objects(), ElementsAre("a", "b", "e"));
}

TEST_F(OpenSession, removesAnObjectWithItsConnectionsAndColumns)
{
    Session session = read(object("a", "Adder", "connect = { a = 'b.sum' }\n") + object("b", "Adder")
                           + column("a", "a.sum") + column("b", "b.sum"));
    EXPECT_TRUE(session.remove("b"));
    EXPECT_THAT(session.objects(), ElementsAre("a"));
    EXPECT_THAT(session.columns(), ElementsAre("a"));
    EXPECT_THAT(*session.savedText(), Not(HasSubstr("connect")));
    EXPECT_TRUE(session.setText("a.a", "4"));
    EXPECT_EQ(*session.text("a.a"), "4");
}

TEST_F(OpenSession, renamesAnObjectWithItsConnectionsAndColumns)
{
    const std::string file = object("a", "Adder", "set.b = 1\nconnect.a = 'b.sum'\n")
                             + object("b", "Adder", "set.a = 2\n") + object("b.b", "Adder", "connect.b = 'b.sum'\n")
                             + column("b", "b.sum") + column("b.b", "b.b.sum");
    Session session = read(file);
    ASSERT_TRUE(session.faults().empty()) << session.faults().lines().front();
    Tarn::Context before{session};
    EXPECT_TRUE(before.evaluate());
    EXPECT_TRUE(session.rename("b", "c"));
    EXPECT_THAT(session.objects(), ElementsAre("a", "c", "b.b"));
    EXPECT_EQ(*before.text("c.sum"), "2");
    EXPECT_FALSE(before.text("b.sum"));

    std::string expected = file;
    for (const auto& [from, to] :
         {std::pair{"name = 'b'\n", "name = 'c'\n"}, std::pair{"connect.a = 'b.sum'", "connect.a = 'c.sum'"},
          std::pair{"connect.b = 'b.sum'", "connect.b = 'c.sum'"}, std::pair{"value = 'b.sum'", "value = 'c.sum'"}})
        expected.replace(expected.find(from), std::string(from).size(), to);
    EXPECT_EQ(*session.savedText(), *read(expected).savedText());
    EXPECT_TRUE(session.setText("c.a", "5"));
    EXPECT_TRUE(session.connect("c.sum", "a.b"));
    EXPECT_TRUE(session.create("Adder", "b"));
    EXPECT_EQ(reasonOf(session.rename("c", "b")), "the name \"b\" is taken");
    EXPECT_TRUE(session.remove("c"));
}

TEST_F(OpenSession, refusesNamesThatAreInvalidOrWouldChangeTheNetwork)
{
    Session session = read(object("a", "Adder") + object("x", "GlobalTime", "set.time = '0[0,1]@0.5'\n")
                           + object("b", "Adder", "connect.a = 'a.sum'\n") + object("in", "Adder")
                           + object("d", "Dotted", "set.'in.a=b' = 1\n") + column("step", "x.GlobalTime.dt"));
    ASSERT_TRUE(session.faults().empty()) << session.faults().lines().front();
    const std::string before = *session.savedText();
    EXPECT_EQ(reasonOf(session.rename("b", "")), "found the name \"\", expected one that is not empty and valid UTF-8");
    EXPECT_THAT(reasonOf(session.rename("b", "\xff")), HasSubstr("expected one that is not empty and valid UTF-8"));
    EXPECT_EQ(reasonOf(session.rename("b", "a")), "the name \"a\" is taken");
    EXPECT_EQ(reasonOf(session.rename("c", "d")), "no object is named \"c\"; available: a, b, d, in, x");
    EXPECT_EQ(reasonOf(session.rename("b", "x.GlobalTime")),
              "with an object named \"x.GlobalTime\", \"x.GlobalTime.dt\" would mean another output");
    EXPECT_EQ(reasonOf(session.rename("in", "out")), "object \"d\" has the input \"in.a=b\", which is named after "
                                                     "object \"in\" and would be missing after loading");
    EXPECT_TRUE(session.rename("b", "b"));
    EXPECT_EQ(*session.savedText(), before);
    EXPECT_THAT(session.objects(), ElementsAre("a", "x", "b", "in", "d"));
    EXPECT_TRUE(session.setText("b.b", "1"));
    EXPECT_FALSE(session.setText("x.GlobalTime.b", "1"));
}

TEST_F(OpenSession, followsARenamedObjectInMessages)
{
    Session session = read(object("c", "Picker", "set = { offered = 'Africa,Asia', one = 'Mu@Mu|' }\n")
                           + object("clock", "GlobalTime", "set.time = '0[0,1]@0.5'\n"));
    ASSERT_TRUE(session.faults().empty()) << session.faults().lines().front();
    Tarn::Context context{session};
    EXPECT_TRUE(session.rename("c", "renamed"));
    EXPECT_TRUE(session.rename("clock", "watch"));
    context.evaluateStep();
    EXPECT_TRUE(session.setText("watch.time", "0[1,0]@0.5"));
    EXPECT_THAT(context.summary().unknownChoices.lines(),
                testing::Contains(HasSubstr("object \"renamed\", input \"one\"")));
    const Loam::Result<std::uint64_t> count = Tarn::Context{session}.stepCount();
    ASSERT_FALSE(count);
    EXPECT_THAT(count.reason(), HasSubstr("object \"watch\", input \"time\""));
    EXPECT_TRUE(session.create("TicketReader", "t"));
    EXPECT_TRUE(session.setText("t.ticket", "1"));
    EXPECT_TRUE(session.rename("t", "reader"));
    EXPECT_THAT(session.savedText().reason(),
                HasSubstr("object \"reader\", input \"ticket\": the value cannot be kept"));
}

TEST_F(OpenSession, cannotBeChangedWithFaults)
{
    Session session = read(object("a", "None"));
    EXPECT_EQ(reasonOf(session.create("Adder", "b")), "the network has faults");
    EXPECT_EQ(reasonOf(session.rename("a", "b")), "the network has faults");
    EXPECT_FALSE(session.savedText());
}

TEST_F(OpenSession, usesTheTypesOfItsOwnLibraries)
{
    const std::string network = object("a", "Adder") + column("sum", "a.sum");
    const Session ours = read(network);
    const Session rival = Session::read("format = 1\nlibraries = ['rivalobjects']\n" + network, "rival", ".");
    ASSERT_TRUE(rival.faults().empty()) << rival.faults().lines().front();
    const Session again = read(network);
    ASSERT_TRUE(again.faults().empty()) << again.faults().lines().front();
    for (const auto& [session, sum] : {std::pair{&ours, "0"}, std::pair{&rival, "17"}, std::pair{&again, "0"}}) {
        Tarn::Context context{*session};
        EXPECT_TRUE(context.evaluateStep());
        EXPECT_EQ(*context.text("a.sum"), sum);
    }
}

TEST_F(OpenSession, leavesNothingBehindWhateverIsDestroyedFirst)
{
    const std::vector<std::string> types = Orla::VObjectCreator::names();
    for (const bool sessionFirst : {true, false}) {
        std::optional<Session> one = read(object("a", "Adder") + column("sum", "a.sum"));
        std::optional<Session> two = read(object("a", "Echo"));
        std::optional<Tarn::Context> context{std::in_place, *one};
        if (sessionFirst)
            one.reset();
        EXPECT_TRUE(context->evaluateStep());
        EXPECT_EQ(*context->text("a.sum"), "0");
        context.reset();
        two.reset();
    }
    EXPECT_EQ(Orla::VObjectCreator::names(), types);
}

TEST_F(OpenSession, doesNotChangeTheWorkingDirectory)
{
    const TestFolder folder;
    folder.write("data/greeting.txt", "hello\n");
    const std::string file =
        folder.write("net.toml", networkHead + object("file", "FileReader", "set = { file = 'data/greeting.txt' }\n"));
    const auto before = std::filesystem::current_path();
    const Session session = Session::load(file);
    Tarn::Context context{session};
    EXPECT_TRUE(context.evaluateStep());
    EXPECT_EQ(*context.text("file.line"), "hello");
    EXPECT_EQ(std::filesystem::current_path(), before);
}

TEST_F(OpenSession, mayBeOpenInSeveralThreads)
{
    const std::vector<std::string> types = Orla::VObjectCreator::names();
    std::vector<std::string> sums(8);
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < sums.size(); ++i) {
            threads.emplace_back([&sums, i] {
                const bool isRival = i % 2 == 1;
                const Session session =
                    Session::read((isRival ? "format = 1\nlibraries = ['rivalobjects']\n" : networkHead)
                                      + object("a", "Adder", isRival ? "" : "set = { a = 1, b = 2 }\n"),
                                  "net", ".");
                Tarn::Context context{session};
                context.evaluateStep();
                sums[i] = *context.text("a.sum");
            });
        }
    }
    EXPECT_THAT(sums, ElementsAre("3", "17", "3", "17", "3", "17", "3", "17"));
    EXPECT_EQ(Orla::VObjectCreator::names(), types);
}

} // namespace SessionTest
