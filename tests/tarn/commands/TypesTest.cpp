#include <tarn/commands/Commands.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <string>

namespace TypesTest {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

TEST(TypesCommand, listsValueTypesAndTheObjectTypesOfTheStandardLibraryWithTheirFiles)
{
    const ProcessResult result = runTarn({"types"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, ContainsRegex("\n  number  +double  +value and input  +green  +\"0\"\n"));
    EXPECT_THAT(result.out, ContainsRegex("\n  list of charts  +VChartList  +value  +#C39BD3 "));
    EXPECT_THAT(result.out, ContainsRegex("\n  GlobalTime +" STANDARD_FOLDER "/standard.so\n"));
    EXPECT_THAT(result.out, Not(HasSubstr("Adder")));
}

TEST(TypesCommand, listsTypesOfLibrariesGivenAsNameOrOption)
{
    for (const std::string library : {"testobjects", "--library=testobjects"}) {
        SCOPED_TRACE(library);
        const ProcessResult result = runTarn({"types", library});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.out, ContainsRegex("\n  Adder +" TEST_OBJECTS_FOLDER "/testobjects.so\n"));
    }
}

TEST(TypesCommand, listsTheSameTypesForPrograms)
{
    const auto listed = nlohmann::json::parse(runTarn({"types", "testobjects", "--json"}).out);
    EXPECT_THAT(listed["valueTypes"].dump(), HasSubstr("\"double\""));
    EXPECT_THAT(listed["objectTypes"].dump(), AllOf(HasSubstr("\"GlobalTime\""), HasSubstr("\"Adder\"")));
}

} // namespace TypesTest
