#include <tarn/network/NetworkParser.hpp>

#include <loam/FileError.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <vector>

namespace NetworkParserTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

NetworkFile parseValid(const std::string& text)
{
    Faults faults{"net"};
    NetworkFile file = parseNetwork(text, faults);
    EXPECT_THAT(faults.lines(), IsEmpty());
    return file;
}

std::vector<std::string> faultsOf(const std::string& text)
{
    Faults faults{"net"};
    parseNetwork(text, faults);
    return faults.lines();
}

template<class Setting>
std::vector<std::string> textsOf(const std::vector<Setting>& settings)
{
    std::vector<std::string> texts;
    for (const Setting& setting : settings)
        texts.push_back(setting.input.text + "=" + setting.value.text);
    return texts;
}

} // namespace

TEST(NetworkParser, isReadInFileOrderWithAllPlaces)
{
    const NetworkFile file = parseValid(R"(format = 1
libraries = ["quakes", "land"]

[[object]]
name = "strong"
type = "QuakeFilter"
set = { magnitude = "4.5:10", area = "all" }
connect = { catalog = "reader.catalog" }

[[object]]
type = "GlobalTime"
name = "clock"

[[column]]
title = "utc"
value = "instant.utc"
)");
    ASSERT_EQ(file.libraries.size(), 2u);
    EXPECT_EQ(file.libraries[1].text, "land");
    EXPECT_EQ(file.libraries[1].place, (Place{2, 24}));
    ASSERT_EQ(file.objects.size(), 2u);
    const NetworkFile::Object& strong = file.objects[0];
    EXPECT_EQ(strong.name.text, "strong");
    EXPECT_EQ(strong.name.place, (Place{5, 8}));
    EXPECT_EQ(strong.type.text, "QuakeFilter");
    EXPECT_EQ(strong.description, "object \"strong\"");
    EXPECT_THAT(textsOf(strong.texts), ElementsAre("magnitude=4.5:10", "area=all"));
    EXPECT_EQ(strong.texts[0].input.place, (Place{7, 9}));
    EXPECT_EQ(strong.texts[0].value.place, (Place{7, 21}));
    EXPECT_THAT(textsOf(strong.connections), ElementsAre("catalog=reader.catalog"));
    EXPECT_EQ(file.objects[1].name.text, "clock");
    ASSERT_EQ(file.columns.size(), 1u);
    EXPECT_EQ(file.columns[0].title.text, "utc");
    EXPECT_EQ(file.columns[0].value.text, "instant.utc");
    EXPECT_EQ(file.columns[0].value.place, (Place{16, 9}));
}

TEST(NetworkParser, convertsNumbersAndTruthValuesToTexts)
{
    const NetworkFile file = parseValid(R"(format = 1
[[object]]
name = "a"
type = "T"
set.integer = -42
set.hexadecimal = 0xff
set.number = 4.50
set.tenth = 0.1
set.whole = 45.0
set.infinite = inf
set.yes = true
set.no = false
set.text = 'C:\dir "x"'
set.lines = "a\nb"
)");
    ASSERT_EQ(file.objects.size(), 1u);
    EXPECT_THAT(textsOf(file.objects[0].texts),
                ElementsAre("integer=-42", "hexadecimal=255", "number=4.5", "tenth=0.1", "whole=45", "infinite=inf",
                            "yes=true", "no=false", "text=C:\\dir \"x\"", "lines=a\nb"));
}

TEST(NetworkParser, mayHoldExactTextsBesideTheDisplayedText)
{
    const NetworkFile file = parseValid("format = 1\n[[object]]\nname = 'a'\ntype = 'T'\n"
                                        "set.x = { text = 'shown', exact = 'x' }\nset.y = { exact = ['y', 'z'] }\n");
    ASSERT_EQ(file.objects.size(), 1u);
    ASSERT_EQ(file.objects[0].texts.size(), 2u);
    const NetworkFile::InputText& x = file.objects[0].texts[0];
    EXPECT_EQ(x.value.text, "shown");
    ASSERT_EQ(x.exact.size(), 1u);
    EXPECT_EQ(x.exact[0].text, "x");
    EXPECT_EQ(x.exact[0].place, (Place{5, 35}));
    const NetworkFile::InputText& y = file.objects[0].texts[1];
    EXPECT_FALSE(y.value.place);
    ASSERT_EQ(y.exact.size(), 2u);
    EXPECT_EQ(y.exact[1].text, "z");
}

TEST(NetworkParser, reportsNoFaultsInKeptObjectsOfUnknownType)
{
    Faults faults{"net"};
    const auto isKnown = [](const std::string& type) { return type == "Known"; };
    const std::string text = "format = 1\n[[object]]\nname = 'a'\ntype = 'T'\nset.x = [1]\nset.y = 'b'\ncolour = 1\n"
                             "[[object]]\nname = 'b'\ntype = 'Known'\ncolour = 1\n[[object]]\ntype = 'T'\n";
    const NetworkFile file = parseNetwork(text, faults, isKnown);
    EXPECT_THAT(faults.lines(),
                ElementsAre("net:11:1: object \"b\": unknown key \"colour\"; available: name, type, set, connect",
                            "net:12:1: object number 3: missing key \"name\""));
    ASSERT_EQ(file.objects.size(), 3u);
    EXPECT_EQ(file.objects[0].kept, "set.x = [1]\nset.y = \"b\"\ncolour = 1\n");
    EXPECT_THAT(textsOf(file.objects[0].texts), ElementsAre("y=b"));
    EXPECT_EQ(file.objects[1].kept, "");
}

TEST(NetworkParser, mayUseOtherTomlSpellings)
{
    const NetworkFile file = parseValid("\xEF\xBB\xBF"
                                        "format = 1\r\nobject = [ { name = \"a\", type = \"T\" } ]\r\n"
                                        "column = []\r\n");
    ASSERT_EQ(file.objects.size(), 1u);
    EXPECT_EQ(file.objects[0].name.text, "a");
}

TEST(NetworkParser, reportsEveryFaultWithItsPlace)
{
    const struct {
        const char* text;
        std::vector<std::string> faults;
    } cases[] = {
        {"", {"net:1:1: the file holds no network, expected format = 1"}},
        {"# nothing\n", {"net:1:1: the file holds no network, expected format = 1"}},
        {"libraries = []", {"net:1:1: missing key \"format\", expected format = 1"}},
        {"format = 7", {"net:1:10: format 7: saved by a newer version; this version reads format 1"}},
        {"format = 0", {"net:1:10: format 0: no such format; this version reads format 1"}},
        {"format = '1'", {"net:1:10: format is a text, expected the integer 1"}},
        {"format = 1.0", {"net:1:10: format is a number, expected the integer 1"}},
        // The meaning of keys in a later format is unknown.
        {"format = 2\nlibraries = 5", {"net:1:10: format 2: saved by a newer version; this version reads format 1"}},
        {"format = 1\nlibrary = []",
         {"net:2:1: unknown key \"library\"; available: format, libraries, chart, object, column"}},
        {"format = 1\nlibrarys = []", {"net:2:1: unknown key \"librarys\"; did you mean \"libraries\"?"}},
        {"format = 1\nlibraries = 'a'", {"net:2:13: libraries is a text, expected an array of names"}},
        {"format = 1\nlibraries = ['a', 5, '']",
         {"net:2:19: libraries holds an integer, expected names of libraries",
          "net:2:22: library \"\": expected a plain name, without folder and ending"}},
        {"format = 1\nlibraries = ['../a', \"b\\u0000\"]",
         {"net:2:14: library \"../a\": expected a plain name, without folder and ending",
          "net:2:22: library \"b\\x00\": expected a plain name, without folder and ending"}},
        {"format = 1\n[object]\nname = 'a'",
         {"net:2:1: object is a table, expected tables under the header [[object]]"}},
        {"format = 1\nobject = [1]",
         {"net:2:11: object holds an integer, expected tables under the header [[object]]"}},
        {"format = 1\ncolumn = 2021-02-03",
         {"net:2:10: column is a date, expected tables under the header [[column]]"}},
        {"format = 1\n[[object]]\n",
         {"net:2:1: object number 1: missing key \"name\"", "net:2:1: object number 1: missing key \"type\""}},
        {"format = 1\n[[object]]\nname = 5\ntype = true",
         {"net:3:8: object number 1: name is an integer, expected a text",
          "net:4:8: object number 1: type is a truth value, expected a text"}},
        {"format = 1\n[[object]]\nname = ''\ntype = 'T'", {"net:3:8: object \"\": the name is empty"}},
        {"format = 1\n[[object]]\nname = 'a'\ntype = 'T'\nset = 5\nconnect = []",
         {"net:5:7: object \"a\": set is an integer, expected a table of inputs and their texts",
          "net:6:11: object \"a\": connect is an array, expected a table of inputs and the outputs they read"}},
        {"format = 1\n[[object]]\nname = 'a'\ntype = 'T'\nset = { x = [1], y = { z = 1 }, t = 10:00:00 }",
         {"net:5:13: object \"a\", input \"x\": set to an array, expected a text, a number, a truth value or a table "
          "with an exact text",
          "net:5:24: object \"a\", input \"y\": unknown key \"z\"; available: text, exact",
          "net:5:37: object \"a\", input \"t\": set to a time of day, expected a text, a number, a truth value or a "
          "table with an exact text"}},
        {"format = 1\n[[object]]\nname = 'a'\ntype = 'T'\n"
         "set = { x = { text = 'a' }, y = { exact = [] }, z = { exact = ['a', 1], text = 1 } }",
         {"net:5:13: object \"a\", input \"x\": missing key \"exact\"",
          "net:5:43: object \"a\", input \"y\": exact is an array, expected a text or an array of texts",
          "net:5:63: object \"a\", input \"z\": exact is an array, expected a text or an array of texts",
          "net:5:80: object \"a\", input \"z\": text is an integer, expected a text"}},
        {"format = 1\n[[object]]\nname = 'a'\ntype = 'T'\nconnect = { x = 1 }",
         {"net:5:17: object \"a\", input \"x\": connected to an integer, expected \"OBJECT.OUTPUT\""}},
        {"format = 1\n[[object]]\nname = 'a'\ntype = 'T'\nconect = {}\ncolour = 1",
         {"net:5:1: object \"a\": unknown key \"conect\"; did you mean \"connect\"?",
          "net:6:1: object \"a\": unknown key \"colour\"; available: name, type, set, connect"}},
        {"format = 1\n[[column]]\nvalue = 5\nunit = 'm'",
         {"net:2:1: column number 1: missing key \"title\"",
          "net:3:9: column number 1: value is an integer, expected a text",
          "net:4:1: column number 1: unknown key \"unit\"; available: title, value"}},
        {"format = 1\na.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a.a = 1", {"net:2:1: a key of more than 16 parts"}},
        {"format = 1\nx = 2020-01-01T00:00:00Z",
         {"net:2:1: unknown key \"x\"; available: format, libraries, chart, object, column"}},
    };
    for (const auto& [text, faults] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(faultsOf(text), faults);
    }
}

TEST(NetworkParser, reportsOneFaultWithItsPlaceIfItIsNotToml)
{
    const struct {
        std::string text;
        const char* place;
    } cases[] = {
        {"format = 1\n[[object]\n", "net:2:"},
        {"format = 1\nname = \"a", "net:2:"},
        {"format = 1\nformat = 1", "net:2:"},
        {"format = 1\nset = { a = ", "net:2:"},
        {"format = 1 = 2", "net:1:12:"},
        {"format = 1\n# \xC3\xA4\xff\xfe", "net:2:4: invalid UTF-8 from here on"},
        {std::string("format = 1\n\0\0\0", 14), "net:2:"},
        {"x = " + std::string(100000, '['), "net:1:"},
        {"x = " + std::string(100000, '{'), "net:1:"},
    };
    for (const auto& [text, place] : cases) {
        SCOPED_TRACE(text.substr(0, 40));
        EXPECT_THAT(faultsOf(text), ElementsAre(HasSubstr(place)));
    }
}

// The parser would destroy the nested tables recursively.
TEST(NetworkParser, mayHaveVeryLongKeysWithoutOverflowingTheStack)
{
    std::string key = "a";
    for (int i = 0; i < 1'000'000; ++i)
        key += ".a";
    EXPECT_THAT(faultsOf(key + " = 1"), ElementsAre("net:1:1: a key of more than 16 parts"));
    EXPECT_THAT(faultsOf("[" + key + "]\n= broken"), ElementsAre("net:1:2: a key of more than 16 parts"));
}

// A file truncated at any byte is read up to there or refused with a place.
TEST(NetworkParser, mayBeTruncatedAnywhere)
{
    const std::string whole = "format = 1\nlibraries = [\"a\"]\n[[object]]\nname = \"ä\"\ntype = 'T'\n"
                              "set = { x = \"\"\"y\nz\"\"\", v = 1.5 }\nconnect.w = \"a.b\"\n[[column]]\n"
                              "title = \"t\"\nvalue = \"a.b\"\n";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        for (const std::string& fault : faultsOf(whole.substr(0, length)))
            EXPECT_THAT(fault, testing::StartsWith("net:"));
    }
    EXPECT_THAT(faultsOf(whole), IsEmpty());
}

} // namespace NetworkParserTest
