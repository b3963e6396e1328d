#include <tarn/types/TypeReport.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

using namespace Tarn;
using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace {

ValueTypeDescription valueType(const std::string& name)
{
    return {.name = name, .colour = {}, .defaultText = {}, .failure = {}, .isInput = true, .components = {}};
}

ObjectTypeDescription pendulum()
{
    return {
        .name = "Pendulum",
        .library = "/lib/swing.so",
        .failure = {},
        .inputs = {{"time", "VTime", 5, "0[0,1]@1", true, ""}, {"chart", "VChart", 0, "a\nb", true, "Selector.Chart"}},
        .outputs = {{"angle", "double"}},
        .hiddenInputs = 0};
}

} // namespace

TEST(TypeReport, listsValueTypesInColumns)
{
    ValueTypeDescription number = valueType("double");
    number.colour = "green";
    number.defaultText = "0";
    ValueTypeDescription list = valueType("VChartList");
    list.isInput = false;
    list.defaultText = "a\nb";
    ValueTypeDescription secret = valueType("Secret");
    secret.failure = "it is secret";
    EXPECT_EQ(typeListText({number, list, secret}, {pendulum()}),
              "Value types (use, colour of connections, default text):\n"
              "  double      value and input               green  \"0\"\n"
              "  VChartList  value                         -      \"a\\nb\"\n"
              "  Secret      cannot be made: it is secret  -      -\n"
              "\n"
              "Object types:\n"
              "  Pendulum  /lib/swing.so\n");
}

TEST(TypeReport, describesAnObjectTypeInTables)
{
    EXPECT_EQ(descriptionText({}, {pendulum()}),
              "Object type Pendulum, /lib/swing.so\n"
              "\n"
              "  Input   Type    Level  Initial text  Partner\n"
              "  time    VTime   5      \"0[0,1]@1\"    connected automatically\n"
              "  chart   VChart  0      \"a\\nb\"        connected automatically: Selector.Chart\n"
              "  Output  Type\n"
              "  angle   double\n");
}

TEST(TypeReport, countsTheHiddenInputs)
{
    ObjectTypeDescription type = pendulum();
    type.hiddenInputs = 2;
    EXPECT_THAT(descriptionText({}, {type}), HasSubstr("  2 inputs of a higher expert level not shown\n"));
    EXPECT_THAT(descriptionText({}, {pendulum()}), Not(HasSubstr("not shown")));
}

TEST(TypeReport, describesBothTypesWithTheSameName)
{
    const std::string text = descriptionText({valueType("Pendulum")}, {pendulum()});
    EXPECT_THAT(text, MatchesRegex("Object type Pendulum, (.|\n)*\n\nValue type Pendulum\n(.|\n)*"));
}

TEST(TypeReport, writesJsonWithAFixedOrderAndFormat)
{
    EXPECT_EQ(objectListJson({pendulum()}), R"({
  "objectTypes": [
    {
      "name": "Pendulum",
      "library": "/lib/swing.so",
      "inputs": [
        {
          "name": "time",
          "type": "VTime",
          "level": 5,
          "initialText": "0[0,1]@1",
          "findsPartner": true,
          "partner": null
        },
        {
          "name": "chart",
          "type": "VChart",
          "level": 0,
          "initialText": "a\nb",
          "findsPartner": true,
          "partner": "Selector.Chart"
        }
      ],
      "hiddenInputs": 0,
      "outputs": [
        {
          "name": "angle",
          "type": "double"
        }
      ],
      "failure": null
    }
  ]
}
)");
    EXPECT_EQ(libraryListJson({{"swing", "/lib/swing.so", "", {}, {"Pendulum"}, {}},
                               {"none", "", "", Loam::Failure{"not found"}, {}, {}}}),
              R"({
  "libraries": [
    {
      "name": "swing",
      "path": "/lib/swing.so",
      "shadowedBy": null,
      "objectTypes": [
        "Pendulum"
      ],
      "valueTypes": [],
      "failure": null
    },
    {
      "name": "none",
      "path": null,
      "shadowedBy": null,
      "objectTypes": [],
      "valueTypes": [],
      "failure": "not found"
    }
  ]
}
)");
}

TEST(TypeReport, isValidJsonForAnyName)
{
    ObjectTypeDescription type = pendulum();
    type.name = "\xFF\"\\\n\x01";
    const json read = json::parse(objectListJson({type}));
    EXPECT_EQ(read["objectTypes"][0]["name"], "\uFFFD\"\\\n\x01");
    const json described = json::parse(runTarn({"describe", "Misnamed", "--library=testobjects", "--json"}).out);
    EXPECT_EQ(described["objectTypes"][0]["inputs"][0]["name"], "\uFFFD<b>&amp;\"{in|x}\\N");
    EXPECT_EQ(described["objectTypes"][0]["outputs"][0]["name"], "</TABLE>\n\x01&#65;\\");
}

TEST(TypeReport, wrapsLongListsOfNames)
{
    const std::vector<std::string> names(20, "SomeTypeName");
    std::string list = libraryListText({{"swing", "/lib/swing.so", "", {}, names, {}}});
    EXPECT_THAT(
        list,
        MatchesRegex(
            "swing, /lib/swing.so\n  object types  (SomeTypeName,? ?)+\n(                (SomeTypeName,? ?)+\n)+"));
    for (std::size_t end = 0; (end = list.find('\n')) != std::string::npos; list.erase(0, end + 1))
        EXPECT_LE(end, 88u);
}

TEST(TypeReport, listsTheStandardTypes)
{
    const ProcessResult result = runTarn({"types"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    for (const char* type : {"Enum",
                             "FlagList",
                             "ImageTile",
                             "Range",
                             "StrongPtr<MultipleStringSelection>",
                             "StrongPtr<StringSelection>",
                             "StrongPtr<VAction>",
                             "VMultiPointerDevice",
                             "VObjectStatus",
                             "VScalarFunctor",
                             "VTime",
                             "char",
                             "double",
                             "float",
                             "int",
                             "long",
                             "long long",
                             "short",
                             "string",
                             "unsigned int",
                             "unsigned long",
                             "unsigned long long",
                             "unsigned short"})
        EXPECT_THAT(result.out,
                    ContainsRegex("\n  " + std::string(type) + " +value and input +(-|green|#[0-9A-F]+) +\".*\"\n"));
    EXPECT_THAT(result.out, ContainsRegex("\n  VChartList +value +#C39BD3 "));
    EXPECT_THAT(result.out, ContainsRegex("\n  double +value and input +green +\"0\"\n"));
    EXPECT_THAT(result.out, ContainsRegex("\n  GlobalTime +" STANDARD_FOLDER "/standard.so\n"));
}

TEST(TypeReport, listsTypesOfLibrariesGivenAsNameOrOption)
{
    for (const std::string library : {"testobjects", "--library=testobjects"}) {
        SCOPED_TRACE(library);
        const ProcessResult types = runTarn({"types", library});
        EXPECT_EQ(types.status, 0);
        EXPECT_THAT(types.out, ContainsRegex("\n  Adder +" TEST_OBJECTS_FOLDER "/testobjects.so\n"));
        EXPECT_THAT(runTarn({"objects", library}).out, HasSubstr("Object type Adder, "));
    }
    EXPECT_THAT(runTarn({"objects"}).out, Not(HasSubstr("Adder")));
}

TEST(TypeReport, isPrintedEvenIfALibraryIsMissing)
{
    for (const std::string command : {"types", "objects"}) {
        SCOPED_TRACE(command);
        const ProcessResult result = runTarn({command, "none", "testobjects"});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, HasSubstr("tarn: library \"none\" was not found"));
        EXPECT_THAT(result.out, HasSubstr("Adder"));
    }
}

TEST(TypeReport, hidesInputsAboveALevel)
{
    const ProcessResult shown = runTarn({"describe", "TimeReader", "--library=testobjects", "--level=5"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_THAT(shown.out, ContainsRegex("\n  time +VTime +5 +\".*\" +connected automatically\n"));
    EXPECT_THAT(shown.out, Not(ContainsRegex("\n  range ")));
    EXPECT_THAT(shown.out, HasSubstr("\n  1 input of a higher expert level not shown\n"));
    const json objects = json::parse(runTarn({"objects", "--json", "--level=-1"}).out);
    for (const json& type : objects["objectTypes"])
        EXPECT_TRUE(type["inputs"].empty()) << type;
    for (const std::string level : {"", "x", "1.5", "99999999999"}) {
        SCOPED_TRACE(level);
        EXPECT_EQ(runTarn({"objects", "--level=" + level}).status, 3);
    }
}

TEST(TypeReport, suggestsTypesOfBothKindsForAnUnknownName)
{
    const ProcessResult close = runTarn({"describe", "GlobelTime"});
    EXPECT_EQ(close.status, 2);
    EXPECT_EQ(close.out, "");
    EXPECT_EQ(close.err, "tarn: no library has a type \"GlobelTime\"; did you mean the object type \"GlobalTime\"?\n");
    EXPECT_THAT(runTarn({"describe", "duoble"}).err, HasSubstr("; did you mean the value type \"double\"?\n"));
    const ProcessResult far = runTarn({"describe", "Zanzibar"});
    EXPECT_EQ(far.status, 2);
    EXPECT_EQ(far.err, "tarn: no library has a type \"Zanzibar\"; tarn types lists the known types\n");
    EXPECT_EQ(runTarn({"describe"}).status, 3);
}

TEST(TypeReport, isTheSameInEveryLocale)
{
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"types", "--json"}, {"objects", "testobjects", "--json"}, {"describe", "VTime"}}) {
        SCOPED_TRACE(arguments[0]);
        const ProcessResult plain = runTarn(arguments, {.environment = {"LC_ALL=C"}, .shell = {}});
        const ProcessResult german = runTarn(arguments, {.environment = {"LC_ALL=de_DE.UTF-8"}, .shell = {}});
        EXPECT_EQ(plain.out, german.out);
        EXPECT_TRUE(plain.out.ends_with("\n"));
    }
}
