#include <loam/OutputFile.hpp>

#include "support/TestFolder.hpp"

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <type_traits>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OutputFileTest {

using namespace Loam;
using testing::ElementsAre;

static_assert(!std::is_copy_constructible_v<OutputFile>);

namespace {

// The message for an error, in the language of the environment.
std::string reason(int error)
{
    return std::generic_category().message(error);
}

std::string failureOf(const std::string& path)
{
    try {
        OutputFile{path};
    } catch (const FileError& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST(OutputFile, appearsWhenItIsCommitted)
{
    const TestFolder folder;
    {
        OutputFile output{folder.file("result")};
        output.write("first ");
        output.write("second");
        output.flush();
        EXPECT_FALSE(std::filesystem::exists(folder.file("result")));
        output.commit();
    }
    EXPECT_EQ(contentOf(folder.file("result")), "first second");
    EXPECT_THAT(folder.names(), ElementsAre("result"));
}

TEST(OutputFile, leavesTheOldFileUnlessItIsCommitted)
{
    const TestFolder folder;
    folder.write("result", "old");
    {
        OutputFile output{folder.file("result")};
        output.write(std::string(1 << 20, 'n'));
    }
    EXPECT_EQ(contentOf(folder.file("result")), "old");
    EXPECT_THAT(folder.names(), ElementsAre("result"));
}

TEST(OutputFile, keepsThePermissionsOfTheFileThatItReplaces)
{
    const TestFolder folder;
    folder.write("result", "old");
    ASSERT_EQ(::chmod(folder.file("result").c_str(), 0666), 0); // more than the mask of new files allows
    OutputFile output{folder.file("result")};
    output.write("new");
    output.commit();
    struct stat status {};
    ASSERT_EQ(::stat(folder.file("result").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777u, 0666u);
    EXPECT_EQ(contentOf(folder.file("result")), "new");
}

TEST(OutputFile, replacesTheTargetOfALinkInsteadOfTheLink)
{
    const TestFolder folder;
    folder.write("data/result", "old");
    std::filesystem::create_symlink("data/result", folder.file("link"));
    OutputFile output{folder.file("link")};
    output.write("new");
    output.commit();
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link")));
    EXPECT_EQ(contentOf(folder.file("data/result")), "new");
}

TEST(OutputFile, acceptsTheLongestPossibleName)
{
    const TestFolder folder;
    OutputFile output{folder.file(std::string(255, 'n'))};
    output.commit();
    EXPECT_THAT(folder.names(), ElementsAre(std::string(255, 'n')));
}

TEST(OutputFile, writesToDevicesInsteadOfReplacingThem)
{
    ASSERT_TRUE(isSafeToWriteDevices());
    OutputFile output{"/dev/null"};
    EXPECT_TRUE(output.isStream());
    output.write("discarded");
    output.commit();
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(OutputFile, reportsAFullDevice)
{
    ASSERT_TRUE(isSafeToWriteDevices());
    OutputFile output{"/dev/full"};
    output.write("too much");
    try {
        output.commit();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const FileError& error) {
        EXPECT_EQ(error.what(), "cannot write /dev/full: " + reason(ENOSPC));
    }
}

TEST(OutputFile, namesTheFileThatCannotBeWritten)
{
    const TestFolder folder;
    folder.write("file", "");
    EXPECT_EQ(failureOf(folder.file("no/result")), "cannot write " + folder.file("no/result") + ": " + reason(ENOENT));
    EXPECT_EQ(failureOf(folder.file("file/result")),
              "cannot write " + folder.file("file/result") + ": " + reason(ENOTDIR));
    EXPECT_EQ(failureOf(folder.path()), "cannot write " + folder.path() + ": " + reason(EISDIR));
    EXPECT_THAT(folder.names(), ElementsAre("file"));
}

TEST(OutputFile, rejectsAClosedStream)
{
    EXPECT_THROW((OutputFile{-1, "standard output"}), FileError);
}

namespace {

bool supportsUnnamedFiles(const TestFolder& folder)
{
    const int descriptor = ::open(folder.path().c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, 0600);
    if (descriptor >= 0)
        ::close(descriptor);
    return descriptor >= 0;
}

} // namespace

TEST(OutputFile, removesUnfinishedFilesWhenTheProgramEndsAtOnce)
{
    const TestFolder folder;
    folder.write("second", "old");
    OutputFile first{folder.file("first")};
    OutputFile second{folder.file("second")};
    first.write("new");
    {
        OutputFile third{folder.file("third")};
        third.write("new");
        third.commit();
    }
    OutputFile::removeUnfinished();
    EXPECT_THAT(folder.names(), ElementsAre("second", "third"));
    EXPECT_EQ(contentOf(folder.file("second")), "old");
}

TEST(OutputFile, leavesTheOldFileWhenTheProgramIsKilled)
{
    const TestFolder folder;
    folder.write("result", "old");
    const pid_t child = ::fork();
    if (child == 0) {
        OutputFile output{folder.file("result")};
        output.write("new");
        output.flush();
        std::raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(contentOf(folder.file("result")), "old");
    // Only an unfinished file that had to be named remains.
    EXPECT_EQ(folder.names().size(), supportsUnnamedFiles(folder) ? 1u : 2u);
}

TEST(OutputFile, worksWhenMoreFilesAreOpenThanAreTracked)
{
    const TestFolder folder;
    {
        std::vector<std::unique_ptr<OutputFile>> many;
        for (int i = 0; i < 100; ++i)
            many.push_back(std::make_unique<OutputFile>(folder.file("file" + std::to_string(i))));
        for (const auto& file : many)
            file->commit();
    }
    EXPECT_EQ(folder.names().size(), 100u);
}

TEST(OutputFile, isSavedWithItsEndingIfItIsUnfinished)
{
    const TestFolder folder;
    folder.write("old", "old");
    OutputFile kept{folder.file("old")};
    kept.saveIfUnfinished(folder.file("old"), "]");
    kept.write("[1");
    kept.flush();
    kept.write(",2");
    OutputFile elsewhere{folder.file("table")};
    elsewhere.saveIfUnfinished(folder.file("table.incomplete"), {});
    elsewhere.write("row");
    OutputFile plain{folder.file("plain")};
    plain.write("lost");
    OutputFile done{folder.file("done")};
    done.saveIfUnfinished(folder.file("unused"), "wrong");
    done.write("complete");
    done.commit();
    OutputFile::saveUnfinished();
    EXPECT_THAT(folder.names(), ElementsAre("done", "old", "table.incomplete"));
    EXPECT_EQ(contentOf(folder.file("old")), "[1,2]");
    EXPECT_EQ(contentOf(folder.file("table.incomplete")), "row");
    EXPECT_EQ(contentOf(folder.file("done")), "complete");
}

TEST(OutputFile, isNotSavedAfterItIsDestroyed)
{
    const TestFolder folder;
    {
        OutputFile output{folder.file("result")};
        output.saveIfUnfinished(folder.file("result"), {});
        output.write("dropped");
    }
    OutputFile::saveUnfinished();
    EXPECT_THAT(folder.names(), ElementsAre());
}

TEST(OutputFile, isLeftAloneByProcessesThatAreForkedLater)
{
    const TestFolder folder;
    OutputFile output{folder.file("result")};
    output.saveIfUnfinished(folder.file("incomplete"), "ending");
    output.write("row");
    const pid_t child = ::fork();
    if (child == 0) {
        OutputFile::saveUnfinished();
        OutputFile::removeUnfinished();
        ::_exit(0);
    }
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    output.commit();
    EXPECT_EQ(contentOf(folder.file("result")), "row");
    EXPECT_THAT(folder.names(), ElementsAre("result"));
}

} // namespace OutputFileTest
