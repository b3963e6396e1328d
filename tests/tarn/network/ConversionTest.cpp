#include <tarn/network/Conversion.hpp>

#include <tarn/libraries/Libraries.hpp>
#include <tarn/network/NetworkParser.hpp>
#include <tarn/network/NetworkWriter.hpp>

#include <trellis/VValueCreator.hpp>

#include "tarn/ExampleNetworks.hpp"
#include "tarn/TarnProcess.hpp"
#include "tarn/ValueTexts.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace ConversionTest {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string head = "format = 1\nlibraries = [\"testobjects\"]\n";

std::string object(const std::string& name, const std::string& type, const std::string& lines = "")
{
    return "\n[[object]]\nname = \"" + name + "\"\ntype = \"" + type + "\"\n" + lines;
}

struct Converted {
    int status = -1;
    std::string text;
    std::string err;
};

/// Converts \p network. If a file was written, checks that a second conversion gives the same
/// text.
Converted convert(const std::string& network, const std::vector<std::string>& options = {},
                  const TarnProcess::Options& process = {})
{
    const TestFolder folder;
    std::vector<std::string> arguments{"convert", folder.write("net.toml", network), folder.file("once.toml")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const ProcessResult result = runTarn(arguments, process);
    EXPECT_EQ(result.out, "");
    Converted converted{result.status, {}, result.err};
    for (auto found = converted.err.find(folder.path() + '/'); found != std::string::npos;
         found = converted.err.find(folder.path() + '/'))
        converted.err.erase(found, folder.path().size() + 1);
    if (std::filesystem::exists(folder.file("once.toml"))) {
        converted.text = contentOf(folder.file("once.toml"));
        EXPECT_EQ(runTarn({"convert", folder.file("once.toml"), folder.file("twice.toml")}, process).status,
                  result.status);
        EXPECT_EQ(contentOf(folder.file("twice.toml")), converted.text);
    }
    return converted;
}

} // namespace

TEST(Conversion, writesEveryExampleTheSameAgain)
{
    const TestFolder folder;
    for (const std::string& network : exampleNetworks()) {
        SCOPED_TRACE(network);
        const std::string once = folder.file("once.toml");
        const std::string twice = folder.file("twice.toml");
        const ProcessResult first = runTarn({"convert", network, once});
        EXPECT_EQ(first.status, 0) << first.err;
        const ProcessResult second = runTarn({"convert", once, twice});
        EXPECT_EQ(second.status, 0) << second.err;
        EXPECT_EQ(contentOf(twice), contentOf(once));
        EXPECT_EQ(runTarn({"check", once}).status, 0);
        // Both keep the names of files.
        const ProcessResult printed = runTarn({"convert", network, "-"});
        const ProcessResult kept = runTarn({"convert", "--keep-names", network, twice});
        EXPECT_EQ(kept.status, 0) << kept.err;
        EXPECT_EQ(contentOf(twice), printed.out);
    }
}

// Compares the values in the file with the values that the texts make, for every type,
// including types added later.
TEST(Conversion, keepsEveryValueOfEveryType)
{
    Tarn::Libraries libraries{{STANDARD_FOLDER}};
    ASSERT_TRUE(libraries.load("standard"));
    struct Case {
        std::string type;
        std::string text;
    };
    std::vector<std::vector<Case>> objects;
    const auto fresh = [](const std::string& type) {
        bool ok = false;
        return Orla::VValueCreator::createValue(type, "", ok);
    };
    const std::vector<std::string> types = inputTypes();
    EXPECT_GE(types.size(), 35u);
    for (const std::string& type : types) {
        std::size_t number = 0;
        for (const std::string& text : valueTexts()) {
            if (!fresh(type)->setValueFromText(text))
                continue;
            if (objects.size() == number)
                objects.emplace_back();
            objects[number++].push_back({type, text});
        }
    }
    Tarn::NetworkFile network;
    network.libraries = {{"testobjects", {}}};
    for (const std::vector<Case>& cases : objects) {
        Tarn::NetworkFile::Object& entry = network.objects.emplace_back();
        entry.name.text = "object " + std::to_string(network.objects.size());
        entry.type.text = "Everything";
        for (const auto& [type, text] : cases)
            entry.texts.push_back({.input = {type, {}}, .value = {text, {1, 1}}});
    }

    const Converted result = convert(Tarn::networkText(network));
    ASSERT_EQ(result.status, 0) << result.err;
    // The bytes are the same if a library has set a locale with a decimal comma.
    const std::string locale = object("locale", "LocaleSetter");
    const Converted comma = convert(Tarn::networkText(network) + locale, {}, {{"LC_ALL=de_DE.UTF-8"}, ""});
    EXPECT_EQ(comma.text, result.text + locale);

    Tarn::Faults faults{"net"};
    const Tarn::NetworkFile written = Tarn::parseNetwork(result.text, faults);
    ASSERT_THAT(faults.lines(), IsEmpty());
    ASSERT_EQ(written.objects.size(), objects.size());
    for (std::size_t number = 0; number < objects.size(); ++number) {
        const auto& texts = written.objects[number].texts;
        ASSERT_EQ(texts.size(), objects[number].size());
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const auto& [type, text] = objects[number][i];
            SCOPED_TRACE(type + ": " + testing::PrintToString(text));
            EXPECT_EQ(texts[i].input.text, type);
            const auto held = fresh(type);
            EXPECT_TRUE(held->setValueFromText(text));
            const auto read = fresh(type);
            for (const Tarn::PlacedText& exact : texts[i].exact)
                EXPECT_TRUE(read->setValueFromText(exact.text));
            if (texts[i].exact.empty()) {
                EXPECT_TRUE(read->setValueFromText(texts[i].value.text));
            }
            EXPECT_EQ(read->Text(), held->Text());
            EXPECT_TRUE(!read->isDifferentFrom(held) || held->isDifferentFrom(held->copy()));
        }
    }
    EXPECT_TRUE(libraries.unload());
}

TEST(Conversion, keepsChoicesWithAnyNames)
{
    const auto chooser = [](const std::string& one, const std::string& sets) {
        return head + object(one, "Chooser", sets);
    };
    EXPECT_EQ(convert(chooser("a", "set.case = \"cubic\"\nset.one = \"a|b\"\n")).text,
              chooser("a", "set.case = \"cubic{plain}{cubic}{two words ä\\\"\\n}{pi{e}ces}\"\n"
                           "set.one = \"a|b@plain|a|b|a@b|@@|two words ä\\\"\\n{}||\"\n"));
    EXPECT_EQ(convert(chooser("b", "set.many = \"{plain}\"\nset.one = \"@@\"\n")).text,
              chooser("b", "set.one = { text = \"@@@plain|a|b|a@b|@@|two words ä\\\"\\n{}||\", exact = \"@@\" }\n"
                           "set.many = { text = \"{plain}@{plain}{pi{e}ces}{ä\\\"\\n}\", exact = \"{plain}\" }\n"));
    EXPECT_EQ(convert(chooser("c", "set.case = \"two words ä\\\"\\n\"\nset.one = \"\"\n")).status, 0);
    // A choice that its text cannot select is refused, not replaced by another.
    const Converted refused = convert(chooser("d", "set.one = \"a@b\"\n"));
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.text, "");
    EXPECT_THAT(refused.err, HasSubstr("net.toml:7:11: object \"d\", input \"one\": the text \"a@b\" is refused"));
}

TEST(Conversion, writesInputsInTheOrderOfTheObjectWithTheirValues)
{
    EXPECT_EQ(convert("# A comment\nformat = 1\nlibraries = ['testobjects']\n"
                      "[[object]]\ntype = 'Adder'\nname = 'b'\nconnect = { b = 'a.sum', a = 'a.sum' }\n"
                      "[[object]]\ntype = 'Adder'\nname = 'a'\nset = { b = '2.50 or so', a = -0.0 }\n"
                      "[[column]]\nvalue = 'b.sum'\ntitle = 'sum'\n")
                  .text,
              head + object("b", "Adder", "connect.a = \"a.sum\"\nconnect.b = \"a.sum\"\n")
                  + object("a", "Adder", "set.a = -0.0\nset.b = 2.5\n")
                  + "\n[[column]]\ntitle = \"sum\"\nvalue = \"b.sum\"\n");
}

TEST(Conversion, acceptsAnyNames)
{
    const std::string network =
        head + "chart = \"a \\\"chart\\\" ä\"\n"
        + object("say \\\"ä\\\"\\n{}'\\t\\\\", "Dotted", "set.\"in.a=b\" = 5\n")
        + object(" ", "Echo", "set.text = \"\"\n")
        + object("🌍.x", "Adder", "connect.a = \"say \\\"ä\\\"\\n{}'\\t\\\\.out.range.time\"\n");
    const Converted result = convert(network);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.text, network);
}

// convert() compares the result with that of a second conversion.
TEST(Conversion, writesUnusualTextsInOneSpelling)
{
    const struct {
        const char* given;
        const char* written;
    } cases[] = {
        {"''", R"("")"},
        {R"("it's")", R"("it's")"},
        {R"('C:\new "x"')", R"("C:\\new \"x\"")"},
        {"\"\"\"\na\n\tb\\\n   c\"\"\"", R"("a\n\tbc")"},
        {"'''a\n\\n'''", R"("a\n\\n")"},
        {R"("\u0001\u007f\u0085\u2028\u2029\u00E4\U0001F30D")", R"("\u0001\u007F\u0085\u2028\u2029ä🌍")"},
        {R"("1.50")", R"("1.50")"},
    };
    const auto network = [](const std::string& text) {
        return head + object("e", "Echo", "set.text = " + text + "\n")
               + object("odd", "Strange", "set.\"it's\" = " + text + "\n\"a\\tb\" = [" + text + "]\n");
    };
    const std::string locale = object("locale", "LocaleSetter");
    for (const auto& [given, written] : cases) {
        SCOPED_TRACE(given);
        const Converted result = convert(network(given));
        EXPECT_EQ(result.status, 2); // "Strange" is unknown
        EXPECT_EQ(result.text, network(written));
        EXPECT_EQ(convert(network(given) + locale, {}, {{"LC_ALL=de_DE.UTF-8"}, ""}).text, network(written) + locale);
    }
}

TEST(Conversion, savesValuesFromTheCommandLine)
{
    const Converted result = convert(head + object("a", "Adder", "set.a = 1\n") + object("e", "Echo"),
                                     {"--set=a.a=1", "--set=a.a=40", "--set=a.b=2.50", "--set=e.text=x\n=\"ä\""});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.text, head + object("a", "Adder", "set.a = 40\nset.b = 2.5\n")
                               + object("e", "Echo", "set.text = \"x\\n=\\\"ä\\\"\"\n"));
    EXPECT_EQ(result.err, "net.toml: 2 objects, 0 connections, written to once.toml\n");
}

TEST(Conversion, reportsThePlaceOfWhateverCannotBeKept)
{
    const struct {
        std::string network;
        std::vector<std::string> options;
        const char* fault;
    } cases[] = {
        {head + object("t", "TicketReader", "set.ticket = 'one'\n"),
         {},
         "net.toml:7:14: object \"t\", input \"ticket\": the value cannot be kept: no text that a file can hold "
         "restores it\n"},
        {head + object("e", "Echo"),
         {"--set=e.text=\xFF"},
         "--set=e.text=\\xff: the value cannot be kept: the text is not valid UTF-8\n"},
        {head + object("t", "Strange"),
         {"--set=t.x=1"},
         "--set=t.x=1: object \"t\" has no inputs because its type is unknown\n"},
        {head + object("a", "Adder", "set.c = 1\n"),
         {},
         "net.toml:7:5: object \"a\": Adder has no input \"c\"; available: a, b\n"},
        {head + object("a", "Adder", "colour = 1\n"),
         {},
         "net.toml:7:1: object \"a\": unknown key \"colour\"; available: name, type, set, connect\n"},
        {head + object("a", "Adder", "connect.a = 'b.sum'\n"),
         {},
         "net.toml:7:13: object \"a\", input \"a\": no object is named \"b\"\n"},
        {head + object("a", "Adder", "set.a = 1\nset.a = 2\n"), {}, "net.toml:8:"},
        {"format = 2\n", {}, "net.toml:1:10: format 2: saved by a newer version; this version reads format 1\n"},
    };
    for (const auto& [network, options, fault] : cases) {
        SCOPED_TRACE(network);
        const Converted result = convert(network, options);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.text, "");
        EXPECT_THAT(result.err, AllOf(HasSubstr(fault), HasSubstr("net.toml: 1 fault; nothing was written\n")));
    }
}

TEST(Conversion, readsTheExactTextInsteadOfTheDisplayedOne)
{
    const auto network = [](const std::string& value) {
        return head + object("all", "Everything", "set.MultiRange = " + value + "\n");
    };
    const std::string saved = network("{ text = \"[1.000000;4.000000]\", exact = \"[1;2;3;4]\" }");
    EXPECT_EQ(convert(network("'[1; 2; 3; 4]'")).text,
              network("{ text = \"[1.000000;4.000000]\", exact = \"[1; 2; 3; 4]\" }"));
    EXPECT_EQ(convert(saved).text, saved);
    EXPECT_EQ(convert(network("{ exact = '[1;2;3;4]' }")).text, saved);
    EXPECT_EQ(convert(network("{ exact = '[1;2]' }")).text, network("\"[1.000000;2.000000]\""));
    EXPECT_EQ(convert(saved, {"--set=all.MultiRange=[5;6]"}).text, network("\"[5.000000;6.000000]\""));
}

TEST(Conversion, keepsObjectsOfUnknownTypeInPlaceAndReportsThem)
{
    const std::string network = "format = 1\nlibraries = [\"testobjects\", \"none\"]\n"
                                + object("a", "Adder", "set.a = 1\n")
                                + object("odd", "Strange",
                                         "set.x = [1, { y = 2.0 }]\nset.text = \"{}\"\nwhen = 1979-05-27\n"
                                         "connect.z = \"a.sum\"\n")
                                + object("b", "Adder", "connect.a = \"odd.out\"\n")
                                + "\n[[column]]\ntitle = \"odd\"\nvalue = \"odd.out.part\"\n";
    const Converted result = convert(network);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.text, network);
    EXPECT_THAT(result.err, HasSubstr("net.toml:2:29: library \"none\" was not found"));
    EXPECT_THAT(
        result.err,
        HasSubstr("net.toml:11:8: object \"odd\": no library has an object type \"Strange\" (not loaded: \"none\")\n"));
    EXPECT_THAT(result.err, HasSubstr("net.toml: 2 faults; unknown parts were written unchanged\n"));
}

TEST(Conversion, doesNotRunTheNetwork)
{
    const Converted result = convert(head + object("f", "Unfinishable") + object("s", "Slow", "set.listens = 0\n"));
    EXPECT_EQ(result.status, 0) << result.err;
}

TEST(Conversion, keepsFileNamesValidInAnotherFolder)
{
    const TestFolder folder;
    folder.write("old/data/greeting.txt", "hello\n");
    folder.write("old/word", "");
    folder.write("new/word", "");
    std::filesystem::create_directories(folder.file("old/folder"));
    const auto network = [](const std::string& file, const std::string& word) {
        return head + object("file", "FileReader", "set.file = \"" + file + "\"\n")
               + object("e", "Echo", "set.text = \"" + word + "\"\n") + object("f", "Echo", "set.text = \"folder\"\n")
               + object("odd", "Strange", "set.file = \"data/greeting.txt\"\nset.other = \"none\"\n")
               + "\n[[column]]\ntitle = \"line\"\nvalue = \"file.line\"\n";
    };
    const std::string old = folder.write("old/net.toml", network("data/greeting.txt", "word"));
    const std::string moved = folder.file("new/net.toml");

    const ProcessResult result = runTarn({"convert", old, moved});
    EXPECT_EQ(result.status, 2); // because of the object of unknown type
    EXPECT_EQ(contentOf(moved), network("../old/data/greeting.txt", "../old/word"));
    const std::string start = old + ": object ";
    EXPECT_THAT(result.err, HasSubstr(start
                                      + "\"file\", input \"file\": \"data/greeting.txt\" is written as "
                                        "\"../old/data/greeting.txt\", which is the same file from the new folder\n"));
    EXPECT_THAT(result.err, HasSubstr(start + "\"e\", input \"text\": \"word\" is written as \"../old/word\""));
    EXPECT_THAT(
        result.err,
        HasSubstr(start + "\"f\", input \"text\": \"folder\" is also the name of a folder and is left unchanged\n"));
    EXPECT_THAT(result.err, HasSubstr(start
                                      + "\"odd\", input \"file\": \"data/greeting.txt\" names a file and is left "
                                        "unchanged because its object type is unknown\n"));
    EXPECT_THAT(result.err, Not(HasSubstr("none")));

    EXPECT_EQ(runTarn({"convert", "--keep-names", old, moved}).status, 2);
    EXPECT_EQ(contentOf(moved), contentOf(old));
    // The destination of a stream is unknown.
    const ProcessResult printed = runTarn({"convert", old, "-"});
    EXPECT_EQ(printed.out, contentOf(old));
    EXPECT_THAT(printed.err, Not(HasSubstr("is written as")));
}

TEST(Conversion, leavesNamesOfResultsUnchangedInAnotherFolder)
{
    const TestFolder folder;
    folder.write("old/globe.png", "");
    std::filesystem::create_directories(folder.file("new"));
    const std::string network = head + object("w", "FileWriter", "set.file = \"globe.png\"\n");
    const std::string old = folder.write("old/net.toml", network);
    const ProcessResult result = runTarn({"convert", old, folder.file("new/net.toml")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(contentOf(folder.file("new/net.toml")), network);
    EXPECT_THAT(result.err, HasSubstr(old
                                      + ": object \"w\", input \"file\": \"globe.png\" names a result and is left "
                                        "unchanged; the new network writes it in its own folder\n"));
}

TEST(Conversion, writesNetworksThatRunAsBefore)
{
    const TestFolder folder;
    folder.write("old/data/greeting.txt", "hello\n");
    const std::string old =
        folder.write("old/net.toml", head + object("file", "FileReader", "set.file = \"data/greeting.txt\"\n")
                                         + "\n[[column]]\ntitle = \"line\"\nvalue = \"file.line\"\n");
    std::filesystem::create_directories(folder.file("new"));
    EXPECT_EQ(runTarn({"convert", "old/net.toml", "new/net.toml"}, {{}, "cd " + folder.path()}).status, 0);
    const ProcessResult result = runTarn({"run", folder.file("new/net.toml"), "--table=-"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "step,line\n0,hello\n");
}

TEST(Conversion, reportsLibrariesNotFoundFromTheNewFolder)
{
    const TestFolder folder;
    folder.write("old/lib/testobjects.so", contentOf(TEST_OBJECTS_FOLDER "/testobjects.so"));
    const std::string old = folder.write("old/net.toml", head + object("a", "Adder"));
    std::filesystem::create_directories(folder.file("new"));
    const std::string elsewhere = "export TARN_LIBRARIES=";
    const ProcessResult result = runTarn({"convert", old, folder.file("new/net.toml")}, {{}, elsewhere});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr(old
                                      + ": library \"testobjects\" is not found from the new folder; it is beside the "
                                        "old network\n"));
    EXPECT_THAT(runTarn({"convert", old, old}, {{}, elsewhere}).err, Not(HasSubstr("beside the old network")));
}

TEST(Conversion, writesTenThousandObjects)
{
    std::string network = head;
    for (int i = 0; i < 10000; ++i)
        network += object("object " + std::to_string(i), "Adder", "set.a = " + std::to_string(i) + "\n");
    EXPECT_EQ(convert(network).text, network);
}

} // namespace ConversionTest
