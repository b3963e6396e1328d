#include <tarn/commands/Commands.hpp>

#include "tarn/TarnProcess.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace ConvertTest {

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string network = "format = 1\nlibraries = [\"testobjects\"]\n\n"
                            "[[object]]\nname = \"a\"\ntype = \"Adder\"\nset.a = 1\n";

} // namespace

TEST(ConvertCommand, overwritesItsInputAndWritesToStandardOutput)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", "# mine\n" + network);
    const ProcessResult printed = runTarn({"convert", file, "-"});
    EXPECT_EQ(printed.status, 0);
    EXPECT_EQ(printed.out, network);
    EXPECT_EQ(runTarn({"convert", file, file}).status, 0);
    EXPECT_EQ(contentOf(file), network);
    EXPECT_THAT(folder.names(), ElementsAre("net.toml"));
}

TEST(ConvertCommand, replacesTheTargetOfALink)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network);
    folder.write("place/real.toml", "old");
    std::filesystem::create_symlink("place/real.toml", folder.file("link.toml"));
    EXPECT_EQ(runTarn({"convert", file, folder.file("link.toml")}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link.toml")));
    EXPECT_EQ(contentOf(folder.file("place/real.toml")), contentOf(file));
}

TEST(ConvertCommand, leavesTheOldFileWhenTheNewOneCannotBeWritten)
{
    ASSERT_TRUE(isSafeToWriteDevices());
    const TestFolder folder;
    const std::string file =
        folder.write("net.toml", network + "[[object]]\nname = \"e\"\ntype = \"Echo\"\nset.text = \""
                                     + std::string(100000, 'x') + "\"\n");
    const std::string target = folder.write("target.toml", "old");

    const ProcessResult full = runTarn({"convert", file, "/dev/full"});
    EXPECT_EQ(full.status, 4);
    EXPECT_EQ(full.err, "tarn: cannot write /dev/full: No space left on device\n");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
    const ProcessResult limited = runTarn({"convert", file, target}, {{}, "ulimit -f 8"});
    EXPECT_EQ(limited.status, 4);
    EXPECT_EQ(limited.err, "tarn: cannot write " + target + ": File too large\n");
    EXPECT_EQ(runTarn({"convert", file, folder.file("none/net.toml")}).err,
              "tarn: cannot write " + folder.file("none/net.toml") + ": No such file or directory\n");
    EXPECT_EQ(contentOf(target), "old");
    EXPECT_THAT(folder.names(), ElementsAre("net.toml", "target.toml"));
}

TEST(ConvertCommand, leavesTheOldFileInAReadOnlyFolder)
{
    const TestFolder folder;
    const std::string file = folder.write("net.toml", network);
    const std::string target = folder.write("locked/target.toml", "old");
    ASSERT_EQ(::chmod(folder.file("locked").c_str(), 0555), 0);
    // Root may write everywhere unless it gives up that capability.
    const std::string plain = ::geteuid() == 0 ? "set -- setpriv --bounding-set=-dac_override \"$@\"" : "true";
    const ProcessResult result = runTarn({"convert", file, target}, {{}, plain});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.err, "tarn: cannot write " + target + ": Permission denied\n");
    EXPECT_EQ(contentOf(target), "old");
    ASSERT_EQ(::chmod(folder.file("locked").c_str(), 0755), 0);
}

TEST(ConvertCommand, leavesTheOldFileIfItIsInterrupted)
{
    const TestFolder folder;
    const std::string file =
        folder.write("net.toml", network + "[[object]]\nname = \"interrupted\"\ntype = \"Interrupted\"\n");
    const std::string target = folder.write("target.toml", "old");
    const ProcessResult result = runTarn({"convert", file, target});
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.err, "tarn: interrupted; nothing was written\n");
    EXPECT_EQ(contentOf(target), "old");
    EXPECT_EQ(runTarn({"convert", file, "-"}).out, "");
    EXPECT_THAT(folder.names(), ElementsAre("net.toml", "target.toml"));
}

TEST(ConvertCommand, reportsChangedNamesOnlyOnceTheyAreWritten)
{
    const TestFolder folder;
    folder.write("old/word", "");
    const std::string file =
        folder.write("old/net.toml", network + "[[object]]\nname = \"e\"\ntype = \"Echo\"\nset.text = \"word\"\n"
                                         + "[[object]]\nname = \"f\"\ntype = \"Echo\"\nset.text = \""
                                         + std::string(30000, 'x') + "\"\n");
    std::filesystem::create_directory(folder.file("new"));
    // The text fits into the buffer of the output, which fails only when it is complete.
    const ProcessResult failed = runTarn({"convert", file, folder.file("new/net.toml")}, {{}, "ulimit -f 8"});
    EXPECT_EQ(failed.status, 4);
    EXPECT_EQ(failed.err, "tarn: cannot write " + folder.file("new/net.toml") + ": File too large\n");
    EXPECT_THAT(runTarn({"convert", file, folder.file("new/net.toml")}).err,
                HasSubstr("is written as \"../old/word\""));
}

TEST(ConvertCommand, countsManyChangedNames)
{
    const TestFolder folder;
    folder.write("old/word", "");
    std::string text = network;
    for (int i = 0; i < 100; ++i)
        text += "[[object]]\nname = \"e" + std::to_string(i) + "\"\ntype = \"Echo\"\nset.text = \"word\"\n";
    const std::string file = folder.write("old/net.toml", text);
    std::filesystem::create_directory(folder.file("new"));
    const ProcessResult result = runTarn({"convert", file, folder.file("new/net.toml")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 22);
    EXPECT_THAT(result.err, HasSubstr(file + ": 80 more like: object \"e0\", input \"text\": \"word\" is written as"));
}

TEST(ConvertCommand, requiresTwoNamesAndCompleteSettings)
{
    EXPECT_EQ(runTarn({"convert", "net.toml"}).status, 3);
    EXPECT_EQ(runTarn({"convert", "a.toml", "b.toml", "--set=a"}).status, 3);
    EXPECT_EQ(runTarn({"convert", "none.toml", "-"}).status, 4);
    EXPECT_THAT(runTarn({"convert", "--help"}).out, HasSubstr("Comments are not kept."));
}

} // namespace ConvertTest
