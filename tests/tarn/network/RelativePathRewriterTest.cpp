#include <tarn/network/RelativePathRewriter.hpp>

#include "support/TestFolder.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <string>

namespace RelativePathRewriterTest {

using namespace Tarn;

namespace {

class RelativePathRewriterTest : public testing::Test {
protected:
    RelativePathRewriterTest()
    {
        m_folder.write("old/net.toml", "");
        m_folder.write("old/data/quakes.json", "old");
        m_folder.write("shared.json", "");
        m_folder.write("new/deep/net.toml", "");
    }

    const TestFolder& folder() const noexcept { return m_folder; }

private:
    TestFolder m_folder;
};

} // namespace

TEST_F(RelativePathRewriterTest, leadsToTheSameFileFromTheNewFolder)
{
    const RelativePathRewriter rewriter{folder().file("old"), folder().file("new/deep")};
    EXPECT_TRUE(rewriter.isNeeded());
    EXPECT_EQ(rewriter.moved("data/quakes.json"), "../../old/data/quakes.json");
    EXPECT_EQ(rewriter.moved("./data/../data/quakes.json"), "../../old/data/quakes.json");
    EXPECT_EQ(rewriter.moved("../shared.json"), "../../shared.json");
    EXPECT_EQ(RelativePathRewriter(folder().file("old"), folder().path()).moved("data/quakes.json"),
              "old/data/quakes.json");
    EXPECT_EQ(RelativePathRewriter(folder().file("old"), folder().file("old/data")).moved("data/quakes.json"),
              "quakes.json");
}

TEST_F(RelativePathRewriterTest, leavesTextsThatAreNotFileNames)
{
    const RelativePathRewriter rewriter{folder().file("old"), folder().file("new/deep")};
    for (const std::string& text :
         {std::string(), std::string("linear"), std::string("data/none.json"), folder().file("old/data/quakes.json"),
          std::string("net.toml\0x", 10), std::string(5000, 'x')}) {
        SCOPED_TRACE(text.substr(0, 40));
        EXPECT_FALSE(rewriter.concerns(text));
        EXPECT_EQ(rewriter.moved(text), std::nullopt);
    }
}

TEST_F(RelativePathRewriterTest, leavesFolderNamesButRecognisesThem)
{
    const RelativePathRewriter rewriter{folder().file("old"), folder().file("new/deep")};
    for (const char* text : {"data", "."}) {
        EXPECT_TRUE(rewriter.concerns(text));
        EXPECT_EQ(rewriter.moved(text), std::nullopt);
    }
}

TEST_F(RelativePathRewriterTest, changesNothingIfTheFoldersAreTheSame)
{
    std::filesystem::create_directory_symlink(folder().file("old"), folder().file("link"));
    for (const char* name : {"old", "old/.", "link", "none"}) {
        SCOPED_TRACE(name);
        const RelativePathRewriter rewriter{folder().file("old"), folder().file(name)};
        EXPECT_FALSE(rewriter.isNeeded());
        EXPECT_EQ(rewriter.moved("data/quakes.json"), std::nullopt);
    }
    EXPECT_FALSE(RelativePathRewriter{}.isNeeded());
}

TEST_F(RelativePathRewriterTest, distinguishesTheSameFileFromAnotherOfTheSameName)
{
    std::filesystem::create_directory_symlink(folder().file("old/data"), folder().file("new/deep/data"));
    const RelativePathRewriter rewriter{folder().file("old"), folder().file("new/deep")};
    EXPECT_FALSE(rewriter.concerns("data/quakes.json"));
    EXPECT_EQ(rewriter.moved("net.toml"), "../../old/net.toml");
}

TEST_F(RelativePathRewriterTest, followsSymbolicLinks)
{
    // "link/.." is the parent of the target of the link, not the folder of the link.
    folder().write("far/away/inner/x.json", "");
    folder().write("far/away/y.json", "");
    std::filesystem::create_directory_symlink(folder().file("far/away/inner"), folder().file("old/link"));
    const RelativePathRewriter rewriter{folder().file("old"), folder().file("new/deep")};
    const std::optional<std::string> moved = rewriter.moved("link/../y.json");
    ASSERT_TRUE(moved);
    EXPECT_TRUE(std::filesystem::equivalent(folder().file("new/deep/" + *moved), folder().file("far/away/y.json")));
}

} // namespace RelativePathRewriterTest
