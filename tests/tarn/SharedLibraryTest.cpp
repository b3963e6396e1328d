#include <tarn/tarn.hpp>

#include "support/TestFolder.hpp"

#include <trellis/VNetwork.hpp>
#include <trellis/VObjectCreator.hpp>

#include <loam/Environment.hpp>

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

// The program of these tests is linked with the shared library only, and is far from it.

namespace SharedLibraryTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const std::string network = R"(format = 1
libraries = ["testobjects"]

[[object]]
name = "clock"
type = "GlobalTime"
set = { time = "0[0,2]@1" }

[[object]]
name = "sum"
type = "Adder"
set = { a = "1", b = "0.5" }

[[column]]
title = "sum"
value = "sum.sum"
)";

// The handlers of a process that a library must not change.
std::vector<void (*)(int)> signalHandlers()
{
    std::vector<void (*)(int)> handlers;
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGPIPE, SIGRTMAX}) {
        struct sigaction action {};
        ::sigaction(signal, nullptr, &action);
        handlers.push_back(action.sa_handler);
    }
    return handlers;
}

[[noreturn]] void endWithStatus7()
{
    std::_Exit(7);
}

} // namespace

TEST(SharedLibrary, evaluatesASavedNetworkInThreeLines)
{
    const TestFolder folder;
    folder.write("testobjects.so", contentOf(TEST_OBJECTS_FOLDER "/testobjects.so"));
    const std::string file = folder.write("net.toml", network);

    const Session session = Session::load(file);
    Context context{session};
    EXPECT_TRUE(context.evaluateStep());

    EXPECT_TRUE(session.faults().empty());
    EXPECT_EQ(*context.text("sum.sum"), "1.5");
    EXPECT_EQ(*context.get<double>("sum.sum"), 1.5);
}

TEST(SharedLibrary, findsTheStandardObjectsInItsOwnInstallation)
{
    ASSERT_FALSE(std::filesystem::exists(Loam::getExecutableDir() + "/../lib/fathom"));
    Session session;
    EXPECT_TRUE(session.faults().empty());
    EXPECT_TRUE(session.create("GlobalTime", "clock"));
    EXPECT_THAT(session.objects(), ElementsAre("clock"));
}

TEST(SharedLibrary, leavesTheProcessAsItIs)
{
    const std::vector<void (*)(int)> signals = signalHandlers();
    const std::terminate_handler terminate = std::get_terminate();
    const std::string folder = Loam::getCurrentDir();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        const Session session = Session::read(network, "net.toml", TEST_OBJECTS_FOLDER);
        Context context{session};
        while (context.evaluateStep()) {
            EXPECT_EQ(signalHandlers(), signals);
            EXPECT_EQ(std::get_terminate(), terminate);
            EXPECT_EQ(Loam::getCurrentDir(), folder);
        }
        context.finish();
        EXPECT_EQ(context.summary().steps, 3u);
        const Session broken = Session::read("format = 1\n[[object]]\n", "broken.toml", ".");
        EXPECT_THAT(broken.faults().lines(), testing::Contains(HasSubstr("broken.toml:2:")));
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(signalHandlers(), signals);
    EXPECT_EQ(std::get_terminate(), terminate);
    EXPECT_EQ(Loam::getCurrentDir(), folder);
    EXPECT_FALSE(Orla::VObjectCreator::find("Adder")) << "the object library was unloaded";
}

TEST(SharedLibraryDeathTest, leavesAThrowingInitializationToTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::set_terminate(endWithStatus7);
            Session session{ODD_LIBRARIES_FOLDER};
            static_cast<void>(session.loadLibrary("throwinglibrary"));
        },
        testing::ExitedWithCode(7), "^$");
}

TEST(SharedLibrary, describesTheTypesOfTheStandardLibrary)
{
    const TypeCatalogue catalogue{{}};
    EXPECT_THAT(catalogue.refusals(), testing::IsEmpty());
    ASSERT_EQ(catalogue.objectTypes("GlobalTime").size(), 1u);
    EXPECT_EQ(catalogue.objectTypes("GlobalTime").front().inputs.front().typeLabel, "time");
    EXPECT_EQ(catalogue.valueTypes("range").front().name, "Range");
}

TEST(SharedLibrary, readsEventsAndStatuses)
{
    Faults faults{"events.toml"};
    const std::vector<ScriptedEvent> events =
        parseEvents("[[event]]\nstep = 0\nkind = 'keydown'\nkey = 'r'\n[[event]]\nkind = 'knock'\n", faults);
    EXPECT_EQ(events.size(), 1u);
    EXPECT_THAT(faults.lines(), testing::Contains(HasSubstr("events.toml:")));
    EXPECT_EQ(plainText("a&lt;b"), "a<b");
    EXPECT_EQ(severityOf("plain"), Severity::Information);

    Session session{TEST_OBJECTS_FOLDER};
    Context context{session};
    EXPECT_TRUE(context.evaluate());
    EXPECT_FALSE(context.statuses().hasErrors());
    EXPECT_FALSE(context.play(events.front())) << "no object listens";
}

} // namespace SharedLibraryTest
