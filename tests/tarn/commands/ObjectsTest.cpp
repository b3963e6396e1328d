#include <tarn/commands/Commands.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include <string>

namespace ObjectsTest {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(ObjectsCommand, describesTheTypesOfTheStandardLibraryAndOfTheLibrariesNamed)
{
    EXPECT_THAT(runTarn({"objects"}).out, AllOf(HasSubstr("Object type GlobalTime, "), Not(HasSubstr("Adder"))));
    for (const std::string library : {"testobjects", "--library=testobjects"}) {
        SCOPED_TRACE(library);
        const ProcessResult result = runTarn({"objects", library});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.out, AllOf(HasSubstr("Object type GlobalTime, "), HasSubstr("Object type Adder, ")));
    }
}

TEST(ObjectsCommand, listsTypesWhoseObjectsCannotBeCreatedWithTheReason)
{
    const ProcessResult result = runTarn({"objects", "testobjects"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("Object type Unmakable, " TEST_OBJECTS_FOLDER "/testobjects.so\n\n"
                                      "  cannot be made: no licence\n"));
}

TEST(ObjectsCommand, hidesInputsAboveALevel)
{
    const json shown = json::parse(runTarn({"objects", "--json"}).out);
    const json hidden = json::parse(runTarn({"objects", "--json", "--level=-1"}).out);
    ASSERT_EQ(hidden["objectTypes"].size(), shown["objectTypes"].size());
    EXPECT_THAT(shown["objectTypes"].dump(), HasSubstr("\"hotkey\""));
    for (const json& type : hidden["objectTypes"])
        EXPECT_TRUE(type["inputs"].empty()) << type;
}

} // namespace ObjectsTest
