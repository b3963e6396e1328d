#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <string>

namespace ValueTypesTest {

using testing::ContainsRegex;

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

} // namespace ValueTypesTest
