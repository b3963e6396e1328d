#include <fathom/VUrlSystemHandler.hpp> // first: the header must be self-contained

#include <gmock/gmock.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace VUrlSystemHandlerTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::is_abstract_v<VUrlSystemHandler>);
static_assert(std::has_virtual_destructor_v<VUrlSystemHandler>);

namespace {

class Recorder final : public VUrlSystemHandler {
public:
    explicit Recorder(bool accepts) : m_accepts{accepts} {}

    bool openUrl(const std::string& url) override
    {
        seen.push_back(url);
        return m_accepts;
    }

    std::vector<std::string> seen;

private:
    bool m_accepts;
};

// Removes itself while it opens a URL.
class SelfRemoving final : public VUrlSystemHandler {
public:
    bool openUrl(const std::string& url) override
    {
        m_url = url;
        TheUrlSystemHandler = nullptr;
        return m_url == url;
    }

private:
    std::string m_url;
};

class VUrlSystemHandlerTest : public testing::Test {
protected:
    ~VUrlSystemHandlerTest() override { VUrlSystemHandler::TheUrlSystemHandler = nullptr; }
};

using VUrlSystemHandlerDeathTest = VUrlSystemHandlerTest;

bool opensUrlAtExit = false;

void openUrlAtExit(int, void*)
{
    if (opensUrlAtExit)
        std::_Exit(VUrlSystemHandler::Exec("too late") ? 3 : 0);
}

// Registered before the libraries construct their static objects, so called after those
// are destroyed.
void registerFirst()
{
    ::on_exit(openUrlAtExit, nullptr);
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const registersFirst)() = registerFirst;

// Opens another URL when it is destroyed and exits with the result.
class OpeningWhenDestroyed final : public VUrlSystemHandler {
public:
    ~OpeningWhenDestroyed() override { std::_Exit(Exec("too late") ? 3 : 0); }
    bool openUrl(const std::string&) override { return true; }
};

} // namespace

TEST_F(VUrlSystemHandlerTest, opensNothingBeforeAHandlerIsInstalled)
{
    EXPECT_FALSE(VUrlSystemHandler::TheUrlSystemHandler);
    EXPECT_FALSE(VUrlSystemHandler::Exec("https://example.org/"));
}

TEST_F(VUrlSystemHandlerTest, opensTheUrlAndReturnsTheResult)
{
    for (const bool accepts : {true, false}) {
        const StrongPtr<Recorder> recorder(new Recorder(accepts));
        VUrlSystemHandler::TheUrlSystemHandler = recorder;
        EXPECT_EQ(VUrlSystemHandler::Exec("https://example.org/?q=%20#there"), accepts);
        EXPECT_EQ(VUrlSystemHandler::Exec(""), accepts);
        EXPECT_THAT(recorder->seen, ElementsAre("https://example.org/?q=%20#there", ""));
    }
}

TEST_F(VUrlSystemHandlerTest, opensNothingAfterTheHandlerIsRemoved)
{
    const StrongPtr<Recorder> recorder(new Recorder(true));
    VUrlSystemHandler::TheUrlSystemHandler = recorder;
    VUrlSystemHandler::TheUrlSystemHandler = nullptr;
    EXPECT_FALSE(VUrlSystemHandler::Exec("https://example.org/"));
    EXPECT_THAT(recorder->seen, IsEmpty());
}

TEST_F(VUrlSystemHandlerTest, opensNothingThroughADestroyedHandler)
{
    std::optional<Recorder> owned(std::in_place, true);
    VUrlSystemHandler::TheUrlSystemHandler = StrongPtr<Recorder>(&*owned);
    EXPECT_TRUE(VUrlSystemHandler::Exec("https://example.org/"));
    owned.reset();
    EXPECT_TRUE(VUrlSystemHandler::TheUrlSystemHandler);
    EXPECT_FALSE(VUrlSystemHandler::Exec("https://example.org/"));
}

TEST_F(VUrlSystemHandlerTest, canRemoveItselfWhileItOpensAUrl)
{
    VUrlSystemHandler::TheUrlSystemHandler = StrongPtr<SelfRemoving>(new SelfRemoving);
    EXPECT_TRUE(VUrlSystemHandler::Exec("https://example.org/"));
    EXPECT_FALSE(VUrlSystemHandler::TheUrlSystemHandler);
}

TEST_F(VUrlSystemHandlerDeathTest, opensNothingAfterStaticDestructionEvenIfItIsAlive)
{
    EXPECT_EXIT(
        {
            static const auto* const alive = new StrongPtr<Recorder>(new Recorder(true));
            VUrlSystemHandler::TheUrlSystemHandler = *alive;
            opensUrlAtExit = VUrlSystemHandler::Exec("in time");
            std::exit(1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(VUrlSystemHandlerDeathTest, isReleasedAtProcessExitAndThenOpensNothing)
{
    EXPECT_EXIT(
        {
            VUrlSystemHandler::TheUrlSystemHandler = StrongPtr<OpeningWhenDestroyed>(new OpeningWhenDestroyed);
            std::exit(1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace VUrlSystemHandlerTest
