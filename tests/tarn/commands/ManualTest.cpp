#include <tarn/commands/Commands.hpp>

#include "tarn/DescribedObjects.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

// ManualTest is the namespace of the tests of the manual pages.
namespace ManualCommandTest {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

ProcessResult manual(const TestFolder& folder, const std::vector<std::string>& arguments)
{
    std::vector<std::string> all{"manual"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runTarn(all, {.environment = describedLibrary, .shell = "cd '" + folder.path() + "'"});
}

} // namespace

TEST(ManualCommand, describesTheStandardObjectsAndThoseOfTheLibrariesNamed)
{
    const TestFolder folder;
    const ProcessResult result = manual(folder, {"describedobjects", "--output=manual"});
    EXPECT_THAT(contentOf(folder.file("manual/index.md")), AllOf(HasSubstr("[GlobalTime]"), HasSubstr("[Heater]")));
    EXPECT_THAT(contentOf(folder.file("manual/Heater.html")),
                AllOf(HasSubstr("The power of the heater; at least 0 and below 10 kW"), HasSubstr("serial"),
                      Not(HasSubstr("Before you run")), Not(HasSubstr("The heat so far"))));
    // The library has types with faults.
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("tarn: objects of type \"Overheated\" cannot be made: its description is wrong"));
    EXPECT_THAT(result.err, HasSubstr(" object types described in manual\n"));
    EXPECT_EQ(result.out, "");
}

TEST(ManualCommand, escapesMarkupAndControlCharactersInDescriptions)
{
    const TestFolder folder;
    manual(folder, {"describedobjects", "--output=manual"});
    EXPECT_THAT(contentOf(folder.file("manual/Marked.html")),
                AllOf(HasSubstr("A &lt;script&gt;alert(1)&lt;/script&gt; &amp; \\x1b[31m &quot;quoted&quot;. \\x7f"),
                      Not(HasSubstr("<script")), Not(HasSubstr("\x1b"))));
}

TEST(ManualCommand, writesTheSameFilesAgain)
{
    const TestFolder folder;
    EXPECT_EQ(manual(folder, {"--output=a"}).status, 0);
    EXPECT_EQ(manual(folder, {"--output=b"}).status, 0);
    EXPECT_EQ(manual(folder, {"--output=b"}).status, 0);
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("a"))) {
        const std::string name = entry.path().filename();
        EXPECT_EQ(contentOf(folder.file("a/" + name)), contentOf(folder.file("b/" + name))) << name;
    }
}

TEST(ManualCommand, writesNothingIfALibraryIsMissing)
{
    const TestFolder folder;
    const ProcessResult result = manual(folder, {"none", "--output=manual"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("library \"none\" was not found"), HasSubstr("tarn: nothing was written\n")));
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST(ManualCommand, refusesAMissingFolderAndOneWithOtherFiles)
{
    const TestFolder folder;
    EXPECT_EQ(manual(folder, {}).status, 3);
    EXPECT_EQ(manual(folder, {"--output="}).status, 3);
    folder.write("notes", "mine");
    const ProcessResult result = manual(folder, {"--output=."});
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.err, HasSubstr("contains \"notes\", expected an empty folder or an earlier manual"));
    EXPECT_EQ(manual(folder, {"--output=missing/manual"}).status, 4);
    EXPECT_EQ(manual(folder, {"--output=notes"}).status, 4);
    EXPECT_THAT(folder.names(), ElementsAre("notes"));
}

} // namespace ManualCommandTest
