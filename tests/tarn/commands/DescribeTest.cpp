#include <tarn/commands/Commands.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

namespace DescribeTest {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

TEST(DescribeCommand, describesAnObjectTypeOrAValueType)
{
    const ProcessResult objectType = runTarn({"describe", "Adder", "--library=testobjects"});
    EXPECT_EQ(objectType.status, 0);
    EXPECT_EQ(objectType.err, "");
    EXPECT_THAT(objectType.out, AllOf(HasSubstr("Object type Adder, " TEST_OBJECTS_FOLDER "/testobjects.so\n"),
                                      ContainsRegex("\n  sum +number\n"), Not(HasSubstr("Value type"))));
    const ProcessResult valueType = runTarn({"describe", "flags"});
    EXPECT_EQ(valueType.status, 0);
    EXPECT_THAT(valueType.out, AllOf(HasSubstr("Value type flags\n"), HasSubstr("FlagList")));
}

TEST(DescribeCommand, suggestsTypesOfBothKindsForAnUnknownName)
{
    const ProcessResult close = runTarn({"describe", "GlobelTime"});
    EXPECT_EQ(close.status, 2);
    EXPECT_EQ(close.out, "");
    EXPECT_EQ(close.err, "tarn: no library has a type \"GlobelTime\"; did you mean the object type \"GlobalTime\"?\n");
    EXPECT_THAT(runTarn({"describe", "duoble"}).err,
                HasSubstr("; did you mean the object type \"Doubler\" or the value type \"double\"?\n"));
    EXPECT_THAT(runTarn({"describe", "choise"}).err,
                HasSubstr("; did you mean the object type \"Chooser\" or the value type \"choice\"?\n"));
    const ProcessResult far = runTarn({"describe", "Zanzibar"});
    EXPECT_EQ(far.status, 2);
    EXPECT_EQ(far.err, "tarn: no library has a type \"Zanzibar\"; tarn types lists the known types\n");
    EXPECT_EQ(runTarn({"describe"}).status, 3);
}

TEST(DescribeCommand, suggestsTypesWhoseNamesBeginWithTheText)
{
    EXPECT_EQ(runTarn({"describe", "glob"}).err,
              "tarn: no library has a type \"glob\"; did you mean \"GlobalTime\"?\n");
    EXPECT_EQ(runTarn({"describe", "VS"}).err,
              "tarn: no library has a type \"VS\"; did you mean \"VScalarFunctor\"?\n");
    const ProcessResult many = runTarn({"describe", ""});
    EXPECT_EQ(many.status, 2);
    EXPECT_THAT(many.err, ContainsRegex("\", \".*\" or one of [0-9]+ more\\?\n"));
}

TEST(DescribeCommand, findsATypeInALibraryThatIsNotLoaded)
{
    const ProcessResult result = runTarn({"describe", "Adder"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("tarn: no library has a type \"Adder\"; the library \"testobjects\" has it: add "
                                      "--library=testobjects\n"));
}

TEST(DescribeCommand, hidesInputsAboveALevel)
{
    const ProcessResult shown = runTarn({"describe", "TimeReader", "--library=testobjects", "--level=5"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_THAT(shown.out, ContainsRegex("\n  time +time +5 +\".*\" +connected automatically\n"));
    EXPECT_THAT(shown.out, Not(ContainsRegex("\n  range ")));
    EXPECT_THAT(shown.out, HasSubstr("\n  1 input of a higher expert level not shown\n"));
}

TEST(DescribeCommand, returnsStatus1IfTheObjectCannotBeCreated)
{
    const ProcessResult result = runTarn({"describe", "HalfMade", "--library=testobjects"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, HasSubstr("\n  cannot be made: no licence for events\n"));
}

TEST(DescribeCommand, returnsStatus2IfALibraryIsMissingEvenIfTheTypeExists)
{
    const ProcessResult result = runTarn({"describe", "double", "--library=none"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, HasSubstr("Value type number\n"));
    EXPECT_THAT(result.err, HasSubstr("tarn: library \"none\" was not found"));
}

} // namespace DescribeTest
