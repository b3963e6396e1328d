#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <string>

namespace ValueTypesTest {

using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

std::string network(const std::string& value)
{
    return "format = 1\nlibraries = [\"testobjects\"]\n\n[[object]]\nname = \"a\"\ntype = \"Negation\"\nset.in = "
           + value + '\n';
}

} // namespace

TEST(ValueTypes, areListedWithTheirNamesInCode)
{
    const ProcessResult result = runTarn({"types"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    const struct {
        const char* label;
        const char* name;
    } types[] = {
        {"16-bit integer", "short"},
        {"64-bit integer", "long long"},
        {"action", "StrongPtr<VAction>"},
        {"array of 16-bit integers", "int16\\[\\]"},
        {"array of 64-bit integers", "int64\\[\\]"},
        {"array of integers", "int32\\[\\]"},
        {"array of numbers", "double\\[\\]"},
        {"array of single-precision numbers", "float\\[\\]"},
        {"bivector", "-"},
        {"bounding ball", "BoundingBall"},
        {"bool", "-"},
        {"bounding box", "Bounding Box"},
        {"camera", "VCamera"},
        {"character", "char"},
        {"chart", "VChart"},
        {"choice", "StrongPtr<StringSelection>"},
        {"colour", "rgba_float_t"},
        {"enumeration", "Enum"},
        {"event", "VInteractionEvent"},
        {"flags", "FlagList"},
        {"image tile", "ImageTile"},
        {"integer", "int"},
        {"integer triple", "FixedArray<int,3>"},
        {"list of ranges", "MultiRange"},
        {"long integer", "long"},
        {"moment", "Moment"},
        {"multiple choice", "StrongPtr<MultipleStringSelection>"},
        {"number", "double"},
        {"number pair", "FixedArray<double,2>"},
        {"point", "-"},
        {"range", "Range"},
        {"scalar function", "VScalarFunctor"},
        {"single-precision number", "float"},
        {"status", "VObjectStatus"},
        {"text", "string"},
        {"time", "VTime"},
        {"time step", "TimeStep"},
        {"touch points", "VMultiPointerDevice"},
        {"unsigned 16-bit integer", "unsigned short"},
        {"unsigned 64-bit integer", "unsigned long long"},
        {"unsigned integer", "unsigned int"},
        {"unsigned long integer", "unsigned long"},
    };
    for (const auto& [label, name] : types)
        EXPECT_THAT(result.out, ContainsRegex("\n  " + std::string(label) + "  +" + name
                                              + "  +value and input  +(-|green|#[0-9A-F]+)  +\".*\"\n"));
}

TEST(ValueTypes, writeTruthValuesWithoutQuotesHoweverTheyWereSpelled)
{
    const TestFolder folder;
    for (const char* spelling : {"true", "\"true\"", "\" on \"", "\"yes\"", "1", "1.0"}) {
        SCOPED_TRACE(spelling);
        const std::string file = folder.write("net.toml", network(spelling));
        const ProcessResult result = runTarn({"convert", file, "-"});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.out, network("true"));
    }
    const std::string file = folder.write("net.toml", network("true"));
    EXPECT_EQ(runTarn({"convert", file, "-", "--set=a.in=off"}).out, network("false"));
}

TEST(ValueTypes, showTruthValuesInTablesOfRunsAndStudies)
{
    const TestFolder folder;
    const std::string file =
        folder.write("net.toml", network("true") + "\n[[column]]\ntitle = \"out\"\nvalue = \"a.out\"\n");
    EXPECT_EQ(runTarn({"run", file, "--table=-"}).out, "step,out\n0,false\n");
    EXPECT_EQ(runTarn({"run", file, "--table=-", "--set=a.in=no"}).out, "step,out\n0,true\n");
    const ProcessResult study = runTarn({"run", file, "--table=-", "--sweep=a.in=yes,0"});
    EXPECT_EQ(study.status, 0) << study.err;
    EXPECT_THAT(study.out, ContainsRegex("yes,.*false\n.*0,.*true\n"));
}

TEST(ValueTypes, nameTheTextsThatATruthValueAccepts)
{
    const TestFolder folder;
    const std::string accepted = "expected \"true\" or \"false\"\n";
    for (const char* refused : {"\"\"", "\"True\"", "\"truely\"", "\"on off\"", "2", "0.5"}) {
        SCOPED_TRACE(refused);
        const ProcessResult result = runTarn({"check", folder.write("net.toml", network(refused))});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, HasSubstr("net.toml:7:10: object \"a\", input \"in\": the text "));
        EXPECT_THAT(result.err, HasSubstr(" is refused, " + accepted));
    }
    const std::string file = folder.write("net.toml", network("true"));
    EXPECT_THAT(runTarn({"run", file, "--set=a.in=ja"}).err,
                HasSubstr("--set=a.in=ja: the text \"ja\" is refused, " + accepted));
}

} // namespace ValueTypesTest
