#include <tarn/commands/TypeArguments.hpp>

#include <tarn/types/TypeCatalogue.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <limits>
#include <string>

namespace TypeArgumentsTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

Arguments withLevel(const std::string& text)
{
    return {.names = {}, .options = {{"level", {text}}}};
}

} // namespace

TEST(TypeArguments, acceptAnyIntegerAsALevel)
{
    EXPECT_EQ(levelOf(withLevel("5")), 5);
    EXPECT_EQ(levelOf(withLevel("-1")), -1);
    EXPECT_EQ(levelOf(withLevel("2147483647")), std::numeric_limits<int>::max());
}

TEST(TypeArguments, showAllLevelsUnlessOneIsGiven)
{
    EXPECT_EQ(levelOf({}), TypeCatalogue::AllLevels);
}

TEST(TypeArguments, refuseLevelsThatAreNotIntegers)
{
    for (const std::string text : {"", "x", "1.5", "2x", " 2", "99999999999"}) {
        SCOPED_TRACE(text);
        try {
            levelOf(withLevel(text));
            ADD_FAILURE() << "the level was accepted";
        } catch (const UsageError& error) {
            EXPECT_EQ(error.what(), "--level=" + text + ": expected a whole number");
        }
    }
}

TEST(TypeArguments, nameLibrariesInOrder)
{
    EXPECT_THAT(librariesOf({.names = {"c"}, .options = {{"library", {"b", "a"}}}}), ElementsAre("b", "a"));
}

TEST(TypeArguments, reportMissingLibrariesBesideTheTypesOfTheOthers)
{
    for (const std::string command : {"types", "objects"}) {
        SCOPED_TRACE(command);
        const ProcessResult result = runTarn({command, "none", "testobjects"});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, HasSubstr("tarn: library \"none\" was not found"));
        EXPECT_THAT(result.out, HasSubstr("Adder"));
    }
}

} // namespace TypeArgumentsTest
