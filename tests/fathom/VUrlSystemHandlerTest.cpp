#include <fathom/VUrlSystemHandler.hpp> // first: proves that the header stands alone

#include <gmock/gmock.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

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

// Lets go of itself in the middle of its work.
class Leaving final : public VUrlSystemHandler {
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

bool asksAtTheVeryEnd = false;

void askAtTheVeryEnd(int, void*)
{
    if (asksAtTheVeryEnd)
        std::_Exit(VUrlSystemHandler::Exec("too late") ? 3 : 0);
}

// Registered before the libraries make their static objects, and so called after
// these are gone.
void registerFirst()
{
    ::on_exit(askAtTheVeryEnd, nullptr);
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const registersFirst)() = registerFirst;

// Asks for another URL when it is released, and ends the process with the answer.
class AskingAtTheEnd final : public VUrlSystemHandler {
public:
    ~AskingAtTheEnd() override { std::_Exit(Exec("too late") ? 3 : 0); }
    bool openUrl(const std::string&) override { return true; }
};

} // namespace

TEST_F(VUrlSystemHandlerTest, opensNothingBeforeOneIsInstalled)
{
    EXPECT_FALSE(VUrlSystemHandler::TheUrlSystemHandler);
    EXPECT_FALSE(VUrlSystemHandler::Exec("https://example.org/"));
}

TEST_F(VUrlSystemHandlerTest, opensWhatItIsGivenAndSaysWhetherThatWorked)
{
    for (const bool accepts : {true, false}) {
        const StrongPtr<Recorder> recorder(new Recorder(accepts));
        VUrlSystemHandler::TheUrlSystemHandler = recorder;
        EXPECT_EQ(VUrlSystemHandler::Exec("https://example.org/?q=%20#there"), accepts);
        EXPECT_EQ(VUrlSystemHandler::Exec(""), accepts);
        EXPECT_THAT(recorder->seen, ElementsAre("https://example.org/?q=%20#there", ""));
    }
}

TEST_F(VUrlSystemHandlerTest, opensNothingAfterOneWasTakenOut)
{
    const StrongPtr<Recorder> recorder(new Recorder(true));
    VUrlSystemHandler::TheUrlSystemHandler = recorder;
    VUrlSystemHandler::TheUrlSystemHandler = nullptr;
    EXPECT_FALSE(VUrlSystemHandler::Exec("https://example.org/"));
    EXPECT_THAT(recorder->seen, IsEmpty());
}

TEST_F(VUrlSystemHandlerTest, opensNothingThroughOneThatIsGone)
{
    std::optional<Recorder> owned(std::in_place, true);
    VUrlSystemHandler::TheUrlSystemHandler = StrongPtr<Recorder>(&*owned);
    EXPECT_TRUE(VUrlSystemHandler::Exec("https://example.org/"));
    owned.reset();
    EXPECT_TRUE(VUrlSystemHandler::TheUrlSystemHandler);
    EXPECT_FALSE(VUrlSystemHandler::Exec("https://example.org/"));
}

TEST_F(VUrlSystemHandlerTest, mayTakeItselfOutWhileItWorks)
{
    VUrlSystemHandler::TheUrlSystemHandler = StrongPtr<Leaving>(new Leaving);
    EXPECT_TRUE(VUrlSystemHandler::Exec("https://example.org/"));
    EXPECT_FALSE(VUrlSystemHandler::TheUrlSystemHandler);
}

TEST_F(VUrlSystemHandlerDeathTest, opensNothingAfterTheEndOfTheProcessAlsoIfItStaysAlive)
{
    EXPECT_EXIT(
        {
            static const auto* const alive = new StrongPtr<Recorder>(new Recorder(true));
            VUrlSystemHandler::TheUrlSystemHandler = *alive;
            asksAtTheVeryEnd = VUrlSystemHandler::Exec("in time");
            std::exit(1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(VUrlSystemHandlerDeathTest, isReleasedAtTheEndOfTheProcessAndOpensNothingMore)
{
    EXPECT_EXIT(
        {
            VUrlSystemHandler::TheUrlSystemHandler = StrongPtr<AskingAtTheEnd>(new AskingAtTheEnd);
            std::exit(1);
        },
        testing::ExitedWithCode(0), "");
}
