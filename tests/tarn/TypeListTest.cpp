#include <tarn/TypeList.hpp>

#include "tarn/TarnProcess.hpp"

#include <fathom/VTime.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::HasSubstr;

namespace {

// Has a value but no input.
struct Secret {
    friend bool operator==(const Secret&, const Secret&) = default;
};

} // namespace

template<>
struct Orla::VValueTrait<Secret> {
    static std::string Text(const Secret&) { return "secret"; }
    static bool setValueFromText(Secret&, const std::string&) { return true; }
};

TEST(TypeList, saysWhichTypesCanBeInputs)
{
    Orla::VValue<Secret>::myTypedValueCreator();
    const std::string list = Tarn::typeList();
    EXPECT_THAT(list, testing::MatchesRegex("Value types:\n(  .*\n)+\nObject types:\n(  .*\n)*"));
    EXPECT_THAT(list, testing::ContainsRegex("\n  Secret +value\n"));
    EXPECT_THAT(list, testing::ContainsRegex("\n  VTime +value and input\n"));
}

TEST(TypeList, hasTheStandardTypes)
{
    const ProcessResult result = runTarn({"types"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    for (const char* type : {"Enum", "FlagList", "ImageTile", "Range", "StrongPtr<MultipleStringSelection>",
                             "StrongPtr<StringSelection>", "StrongPtr<VAction>", "VMultiPointerDevice",
                             "VObjectStatus", "VScalarFunctor",
                             "VTime", "char", "double", "float", "int", "long", "long long",
                             "short", "string", "unsigned int", "unsigned long", "unsigned long long", "unsigned short"})
        EXPECT_THAT(result.out, testing::ContainsRegex("\n  " + std::string(type) + " +value and input\n"));
    EXPECT_THAT(result.out, testing::ContainsRegex("\n  GlobalTime +" STANDARD_FOLDER "/standard.so\n"));
}

TEST(TypeList, hasTheTypesOfTheLibrariesNamed)
{
    const ProcessResult result = runTarn({"types", "testobjects"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, testing::ContainsRegex("\n  Adder +" TEST_OBJECTS_FOLDER "/testobjects.so\n"));
}

TEST(TypeList, isPrintedWithoutTheLibraryThatIsMissing)
{
    const ProcessResult result = runTarn({"types", "none", "testobjects"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("tarn: library \"none\" was not found"));
    EXPECT_THAT(result.out, HasSubstr("  Adder "));
}
