#include <tarn/libraries/Initialization.hpp>

#include "tarn/NetworkTexts.hpp"

#include <gmock/gmock.h>

#include <exception>
#include <string>
#include <vector>

namespace InitializationTest {

using testing::ElementsAre;

TEST(Initialization, restoresTheTerminateHandler)
{
    const std::terminate_handler before = std::get_terminate();
    {
        const std::string title = "library";
        const Tarn::Initialization initialization{title};
        EXPECT_NE(std::get_terminate(), before);
    }
    EXPECT_EQ(std::get_terminate(), before);
}

TEST(Initialization, endsTheProgramWithTheLibraryAndTheReasonIfItThrows)
{
    const TestFolder folder;
    folder.write("table.csv", "old");
    const std::string network = folder.write("net.toml", "format = 1\nlibraries = ['throwinglibrary']\n");
    const std::vector<std::vector<std::string>> commands{
        {"run", network, "--table=" + folder.file("table.csv")}, {"check", network}, {"libraries", "throwinglibrary"}};
    for (const std::vector<std::string>& arguments : commands) {
        SCOPED_TRACE(arguments.front());
        const ProcessResult result =
            runTarn(arguments, {.environment = {"TARN_LIBRARIES=" ODD_LIBRARIES_FOLDER}, .shell = {}});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, "tarn: library \"throwinglibrary\" cannot be loaded: its initialization threw an "
                              "exception: no?[1m licence\n");
        EXPECT_EQ(contentOf(folder.file("table.csv")), "old");
        EXPECT_THAT(folder.names(), ElementsAre("net.toml", "table.csv"));
    }
}

TEST(Initialization, reportsExhaustedMemoryInWords)
{
    const ProcessResult result =
        runTarn({"libraries", "throwinglibrary"},
                {.environment = {"TARN_LIBRARIES=" ODD_LIBRARIES_FOLDER, "TEST_NO_MEMORY=1"}, .shell = {}});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "tarn: library \"throwinglibrary\" cannot be loaded: its initialization ran out of memory\n");
}

} // namespace InitializationTest
