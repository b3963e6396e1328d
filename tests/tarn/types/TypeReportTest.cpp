#include <tarn/types/TypeReport.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace TypeReportTest {

using namespace Tarn;
using nlohmann::json;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace {

ValueTypeDescription valueType(const std::string& name, const std::string& label)
{
    ValueTypeDescription type;
    type.name = name;
    type.label = label;
    type.isInput = true;
    return type;
}

ObjectTypeDescription::Input inputOf(const std::string& type, int level, const std::string& text)
{
    ObjectTypeDescription::Input input;
    input.name = type;
    input.type = 'V' + type;
    input.typeLabel = type;
    input.level = level;
    input.initialText = text;
    input.findsPartner = true;
    return input;
}

ObjectTypeDescription pendulum()
{
    ObjectTypeDescription type;
    type.name = "Pendulum";
    type.library = "/lib/swing.so";
    type.inputs = {inputOf("time", 5, "0[0,1]@1"), inputOf("chart", 0, "a\nb")};
    type.inputs.back().partner = "Selector.Chart";
    type.outputs = {{"angle", "double", "number"}};
    return type;
}

} // namespace

TEST(TypeReport, listsValueTypesInColumnsOrderedByLabel)
{
    ValueTypeDescription number = valueType("double", "number");
    number.colour = "green";
    number.defaultText = "0";
    ValueTypeDescription list = valueType("VChartList", "list of charts");
    list.isInput = false;
    list.defaultText = "a\nb";
    ValueTypeDescription secret = valueType("Secret", "Secret");
    secret.failure = "it is secret";
    EXPECT_EQ(typeListText({list, secret, number}, {pendulum()}),
              "Value types (name in code, use, colour of connections, default text):\n"
              "  Secret          -           cannot be made: it is secret  -      -\n"
              "  list of charts  VChartList  value                         -      \"a\\nb\"\n"
              "  number          double      value and input               green  \"0\"\n"
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
              "  time    time    5      \"0[0,1]@1\"    connected automatically\n"
              "  chart   chart   0      \"a\\nb\"        connected automatically: Selector.Chart\n"
              "  Output  Type\n"
              "  angle   number\n"
              "\n"
              "  In a network:\n"
              "\n"
              "    [[object]]\n"
              "    name = \"pendulum\"\n"
              "    type = \"Pendulum\"\n");
}

TEST(TypeReport, showsTheNameOfAValueTypeInCodeIfItDiffersFromTheLabel)
{
    ValueTypeDescription number = valueType("double", "number");
    number.defaultText = "0";
    EXPECT_EQ(descriptionText({number}, {}), "Value type number\n"
                                             "\n"
                                             "  name in code  double\n"
                                             "  use           value and input\n"
                                             "  colour        -\n"
                                             "  default text  \"0\"\n");
    EXPECT_THAT(descriptionText({valueType("point", "point")}, {}), Not(HasSubstr("name in code")));
    const json read = json::parse(descriptionJson({number}, {}));
    EXPECT_EQ(read["valueTypes"][0]["name"], "double");
    EXPECT_EQ(read["valueTypes"][0]["label"], "number");
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
    const std::string text = descriptionText({valueType("Pendulum", "Pendulum")}, {pendulum()});
    EXPECT_THAT(text, MatchesRegex("Object type Pendulum, (.|\n)*\n\nValue type Pendulum\n(.|\n)*"));
}

TEST(TypeReport, writesJsonWithAFixedOrderAndFormat)
{
    EXPECT_EQ(objectListJson({pendulum()}), R"({
  "version": 1,
  "objectTypes": [
    {
      "name": "Pendulum",
      "library": "/lib/swing.so",
      "description": null,
      "inputs": [
        {
          "name": "time",
          "type": "Vtime",
          "typeLabel": "time",
          "level": 5,
          "initialText": "0[0,1]@1",
          "findsPartner": true,
          "partner": null,
          "choices": [],
          "description": null
        },
        {
          "name": "chart",
          "type": "Vchart",
          "typeLabel": "chart",
          "level": 0,
          "initialText": "a\nb",
          "findsPartner": true,
          "partner": "Selector.Chart",
          "choices": [],
          "description": null
        }
      ],
      "hiddenInputs": 0,
      "outputs": [
        {
          "name": "angle",
          "type": "double",
          "typeLabel": "number",
          "description": null
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
    type.name = "\u009b\u202e";
    const std::string text = objectListJson({type});
    EXPECT_THAT(text, HasSubstr("\"\\u009b\\u202e\""));
    EXPECT_EQ(json::parse(text)["objectTypes"][0]["name"], type.name);
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

} // namespace TypeReportTest
