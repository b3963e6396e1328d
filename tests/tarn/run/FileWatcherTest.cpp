#include <tarn/run/FileWatcher.hpp>

#include "support/TestFolder.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include <sys/timerfd.h>

namespace FileWatcherTest {

using Tarn::FileState;
using Tarn::FileWatcher;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

namespace fs = std::filesystem;

// A watcher that stops waiting after a minute, long after each change was noticed.
class FileWatcherTest : public testing::Test {
protected:
    FileWatcherTest() : m_timer{::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC)} { setTimer(60, 0); }
    ~FileWatcherTest() override { ::close(m_timer); }

    void setTimer(long seconds, long nanoseconds) const
    {
        const itimerspec time{{}, {seconds, nanoseconds}};
        ::timerfd_settime(m_timer, 0, &time, nullptr);
    }

    void watch(const std::vector<std::string>& files)
    {
        std::map<std::string, FileState> states;
        for (const std::string& file : files)
            states.emplace(file, FileState::of(file));
        watcher.watch(states);
    }

    std::vector<std::string> wait() { return watcher.wait(m_timer); }

    // Returns true if nothing has changed: another change is the first one that is noticed.
    bool noticesOnly(const std::string& file)
    {
        fs::rename(folder.write("next", "next"), file);
        return wait() == std::vector{file};
    }

    TestFolder folder;
    FileWatcher watcher;

private:
    int m_timer;
};

} // namespace

TEST_F(FileWatcherTest, noticesFilesThatAreWrittenOrReplacedOrRemoved)
{
    const std::string file = folder.write("data.txt", "one");
    const std::string other = folder.write("other.txt", "one");
    watch({file, other});
    folder.write("data.txt", "two");
    EXPECT_THAT(wait(), ElementsAre(file));
    fs::rename(folder.write("new.txt", "three"), file);
    EXPECT_THAT(wait(), ElementsAre(file));
    fs::remove(other);
    EXPECT_THAT(wait(), ElementsAre(other));
    folder.write("other.txt", "four");
    EXPECT_THAT(wait(), ElementsAre(other));
    fs::rename(file, other);
    EXPECT_THAT(wait(), ElementsAre(file, other));
}

TEST_F(FileWatcherTest, noticesFilesThatAppear)
{
    const std::string file = folder.file("data.txt");
    watch({file});
    fs::rename(folder.write("new.txt", "one"), file);
    EXPECT_THAT(wait(), ElementsAre(file));
}

TEST_F(FileWatcherTest, noticesFilesThatAreWrittenWithTheSameContent)
{
    const std::string file = folder.write("data.txt", "one");
    watch({file});
    folder.write("data.txt", "one");
    EXPECT_THAT(wait(), ElementsAre(file));
}

TEST_F(FileWatcherTest, noticesOtherPermissions)
{
    const std::string file = folder.write("data.txt", "one");
    watch({file});
    fs::permissions(file, fs::perms::owner_read);
    EXPECT_THAT(wait(), ElementsAre(file));
}

TEST_F(FileWatcherTest, ignoresOtherFilesOfTheFolder)
{
    const std::string file = folder.write("data.txt", "one");
    watch({file});
    folder.write("data.txt~", "two");
    fs::create_directory(folder.file("data"));
    EXPECT_TRUE(noticesOnly(file));
}

TEST_F(FileWatcherTest, forgetsFilesThatAreNoLongerWatched)
{
    const std::string file = folder.write("data.txt", "one");
    const std::string former = folder.write("deep/former.txt", "one");
    watch({file, former});
    folder.write("deep/former.txt", "two");
    watch({file});
    folder.write("deep/former.txt", "three");
    EXPECT_TRUE(noticesOnly(file));
}

TEST_F(FileWatcherTest, noticesWhatHappenedBeforeItWatched)
{
    const std::string file = folder.write("data.txt", "one");
    const FileState state = FileState::of(file);
    folder.write("data.txt", "longer");
    watcher.watch({{file, state}});
    EXPECT_THAT(wait(), ElementsAre(file));
}

TEST_F(FileWatcherTest, keepsWatchingWhenFoldersAreRemovedAndCreatedAgain)
{
    const std::string file = folder.write("a/b/data.txt", "one");
    watch({file});
    fs::remove_all(folder.file("a"));
    EXPECT_THAT(wait(), ElementsAre(file));
    folder.write("a/b/data.txt", "two");
    EXPECT_THAT(wait(), ElementsAre(file));
    folder.write("a/b/data.txt", "three");
    EXPECT_THAT(wait(), ElementsAre(file));
}

TEST_F(FileWatcherTest, keepsWatchingWhenFoldersAreRenamed)
{
    const std::string file = folder.write("a/b/data.txt", "one");
    watch({file});
    fs::rename(folder.file("a"), folder.file("c"));
    EXPECT_THAT(wait(), ElementsAre(file));
    folder.write("c/b/data.txt", "not watched");
    folder.write("d/b/data.txt", "two");
    fs::rename(folder.file("d"), folder.file("a"));
    EXPECT_THAT(wait(), ElementsAre(file));
    folder.write("a/b/data.txt", "three");
    EXPECT_THAT(wait(), ElementsAre(file));
}

TEST_F(FileWatcherTest, followsSymbolicLinks)
{
    const std::string target = folder.write("versions/1/data.txt", "one");
    folder.write("versions/2/data.txt", "two");
    fs::create_symlink("1", folder.file("versions/current"));
    fs::create_symlink("versions/current/../current/data.txt", folder.file("link.txt"));
    const std::string file = folder.file("link.txt");
    watch({file});
    folder.write("versions/1/data.txt", "changed");
    EXPECT_THAT(wait(), ElementsAre(file));
    fs::create_symlink("2", folder.file("versions/next"));
    fs::rename(folder.file("versions/next"), folder.file("versions/current"));
    EXPECT_THAT(wait(), ElementsAre(file));
    folder.write("versions/2/data.txt", "changed");
    EXPECT_THAT(wait(), ElementsAre(file));
}

TEST_F(FileWatcherTest, endsForLinksThatLeadToThemselves)
{
    const std::string file = folder.file("loop");
    fs::create_symlink("loop", file);
    watch({file});
    EXPECT_TRUE(noticesOnly(file));
}

TEST_F(FileWatcherTest, stopsWaitingWhenTheDescriptorIsReadable)
{
    watch({folder.write("data.txt", "one")});
    setTimer(0, 1);
    EXPECT_THAT(wait(), IsEmpty());
}

TEST_F(FileWatcherTest, refusesNothingInOrdinaryFolders)
{
    watch({folder.file("missing/data.txt"), folder.write("file", "") + "/data.txt"});
    EXPECT_THAT(watcher.refusals(), IsEmpty());
}

} // namespace FileWatcherTest
