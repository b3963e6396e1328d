#include <tarn/run/UsedFiles.hpp>

#include "support/TestFolder.hpp"
#include "support/TestNetwork.hpp"

#include <trellis/VNetwork.hpp>

#include <gmock/gmock.h>

namespace UsedFilesTest {

using Tarn::FileState;
using Tarn::UsedFiles;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class UsedFilesTest : public testing::Test {
protected:
    UsedFilesTest()
    {
        network.setDataFolders({folder.file("first"), folder.file("second")});
        network.setFileObserver(&used);
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const auto& [path, state] : used.files())
            names.push_back(path.substr(folder.path().size() + 1));
        return names;
    }

    TestFolder folder;
    Orla::VNetwork network{folder.file("own")};
    Orla::VNetwork::Scope scope{network};
    UsedFiles used;
    Loam::StrongPtr<Orla::Node> one = Orla::makeNode("one");
    Loam::StrongPtr<Orla::Node> two = Orla::makeNode("two");
};

} // namespace

TEST_F(UsedFilesTest, recordsWhichObjectReadWhichFile)
{
    const std::string a = folder.write("own/a", "");
    const std::string b = folder.write("own/b", "");
    (void)one->inputFile("a");
    (void)one->inputFile("b");
    (void)two->inputFile(b);
    EXPECT_THAT(names(), ElementsAre("own/a", "own/b"));
    EXPECT_TRUE(used.hasRead(*one, a));
    EXPECT_TRUE(used.hasRead(*two, b));
    EXPECT_FALSE(used.hasRead(*two, a));
    used.forget(*one);
    EXPECT_THAT(names(), ElementsAre("own/b"));
    used.clear();
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(UsedFilesTest, includesTheFilesThatWouldBeReadInsteadIfTheyExisted)
{
    folder.write("second/a", "");
    (void)one->inputFile("a");
    EXPECT_THAT(names(), ElementsAre("first/a", "own/a", "second/a"));
    used.clear();
    folder.write("first/a", "");
    (void)one->inputFile("a");
    EXPECT_THAT(names(), ElementsAre("first/a", "own/a"));
    used.clear();
    (void)one->inputFile("missing");
    EXPECT_THAT(names(), ElementsAre("first/missing", "own/missing", "second/missing"));
}

TEST_F(UsedFilesTest, leavesOutFilesThatObjectsWrite)
{
    folder.write("own/a", "");
    folder.write("own/b", "");
    (void)one->inputFile("a");
    (void)one->inputFile("b");
    (void)two->resultFile("a", nullptr);
    EXPECT_THAT(names(), ElementsAre("own/b"));
}

TEST_F(UsedFilesTest, keepsTheStateBeforeTheFirstReading)
{
    const std::string a = folder.write("own/a", "");
    const FileState before = FileState::of(a);
    (void)one->inputFile("a");
    folder.write("own/a", "longer");
    (void)two->inputFile("a");
    EXPECT_EQ(used.files().at(a), before);
    used.acceptState(a);
    EXPECT_EQ(used.files().at(a), FileState::of(a));
    EXPECT_NE(used.files().at(a), before);
}

} // namespace UsedFilesTest
