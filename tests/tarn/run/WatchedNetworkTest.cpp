#include <tarn/run/WatchedNetwork.hpp>

#include <tarn/run/UpdateList.hpp>

#include "tarn/NetworkTexts.hpp"

#include <trellis/VNetwork.hpp>

#include <loam/FileError.hpp>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace WatchedNetworkTest {

using Tarn::WatchedNetwork;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::Not;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

const std::string chain = object("a", "Adder", "set = { a = 1, b = 2 }\n")
                          + object("b", "Adder", "connect = { a = 'a.sum' }\nset = { b = 10 }\n")
                          + object("c", "Adder", "set = { a = 5 }\n");

class WatchedNetworkTest : public testing::Test {
protected:
    WatchedNetworkTest() { ::setenv("TARN_LIBRARIES", TEST_OBJECTS_FOLDER, 1); }
    ~WatchedNetworkTest() override { ::unsetenv("TARN_LIBRARIES"); }

    void load(const std::string& text, const Tarn::LoadOptions& options = {})
    {
        write(text);
        network.emplace(file, options);
        ASSERT_TRUE(network->load().empty());
        evaluate();
    }

    void write(const std::string& text) const { folder.write("net.toml", networkHead + text); }

    // Evaluates all steps and returns the names of the objects that ran.
    std::vector<std::string> evaluate()
    {
        const Tarn::UpdateList updates{network->context().pool()};
        while (network->context().evaluateStep()) {}
        network->prepare();
        std::vector<std::string> names;
        network->session().network().forEachObject<Orla::VObject>([&](const auto& object) {
            if (updates.contains(*object))
                names.push_back(object->Name());
        });
        return names;
    }

    // Writes the network, follows the change and returns what it reports.
    WatchedNetwork::Response change(const std::string& text)
    {
        write(text);
        return network->apply({file});
    }

    std::string text(const std::string& slot) { return *network->context().text(slot); }

    TestFolder folder;
    const std::string file = folder.file("net.toml");
    std::optional<WatchedNetwork> network;
};

std::string replaced(std::string text, const std::string& old, const std::string& with)
{
    return text.replace(text.find(old), old.size(), with);
}

} // namespace

TEST_F(WatchedNetworkTest, runsOnlyWhatAChangedInputReaches)
{
    load(chain);
    const WatchedNetwork::Response response = change(replaced(chain, "b = 10", "b = 20"));
    EXPECT_THAT(response.changes, ElementsAre("b.b changed"));
    EXPECT_TRUE(response.mustEvaluate);
    EXPECT_THAT(evaluate(), ElementsAre("b"));
    EXPECT_EQ(text("b.sum"), "23");
    // An input that the file does not set has the value that its object declares.
    EXPECT_THAT(change(replaced(chain, "a = 1, ", "")).changes, ElementsAre("a.a, b.b changed"));
    EXPECT_THAT(evaluate(), ElementsAre("a", "b"));
    EXPECT_EQ(text("b.sum"), "12");
}

TEST_F(WatchedNetworkTest, ignoresChangesThatMeanTheSame)
{
    load(chain);
    const WatchedNetwork::Response response = change("# one\n" + chain + "# two\n");
    EXPECT_THAT(response.changes, ElementsAre("no differences"));
    EXPECT_FALSE(response.mustEvaluate);
}

TEST_F(WatchedNetworkTest, keepsTheTextsOfTheCommandLine)
{
    load(chain, {.overrides = {"b.b=100"}});
    EXPECT_THAT(change(replaced(chain, "b = 10", "b = 20")).changes, ElementsAre("no differences"));
    EXPECT_EQ(text("b.sum"), "103");
}

TEST_F(WatchedNetworkTest, loadsOtherObjectsAndConnectionsAgain)
{
    load(chain);
    EXPECT_THAT(change(chain + object("d", "Adder", "connect = { a = 'b.sum' }\n")).changes,
                ElementsAre("1 difference, loaded again"));
    EXPECT_THAT(evaluate(), ElementsAre("a", "b", "c", "d"));
    EXPECT_EQ(text("d.sum"), "13");
}

TEST_F(WatchedNetworkTest, keepsTheLastNetworkWithoutFaults)
{
    load(chain);
    const WatchedNetwork::Response response = change(replaced(chain, "a = 1", "a = 'one'"));
    ASSERT_TRUE(response.faults);
    EXPECT_THAT(response.faults->lines(), ElementsAre(HasSubstr("net.toml:6:13: ")));
    EXPECT_FALSE(response.mustEvaluate);
    EXPECT_TRUE(network->isLoaded());
    EXPECT_EQ(text("b.sum"), "13");
    std::filesystem::remove(file);
    EXPECT_THAT(network->apply({file}).errors, ElementsAre(HasSubstr("cannot read " + file)));
    EXPECT_THAT(change(replaced(chain, "a = 1", "a = 7")).changes, ElementsAre("a.a changed"));
    EXPECT_THAT(evaluate(), ElementsAre("a", "b"));
}

TEST_F(WatchedNetworkTest, waitsForTheRepairOfANetworkWithFaultsAtTheBeginning)
{
    write("broken =");
    network.emplace(file, Tarn::LoadOptions{});
    EXPECT_FALSE(network->load().empty());
    EXPECT_FALSE(network->isLoaded());
    EXPECT_THAT(network->files(), Contains(Key(file)));
    EXPECT_TRUE(change("still broken =").faults);
    const WatchedNetwork::Response response = change(chain);
    EXPECT_FALSE(response.faults);
    EXPECT_TRUE(response.mustEvaluate);
    EXPECT_THAT(evaluate(), ElementsAre("a", "b", "c"));
}

TEST_F(WatchedNetworkTest, runsTheObjectsThatReadAChangedFile)
{
    const std::string one = folder.write("one.txt", "1");
    folder.write("two.txt", "2");
    load(object("one", "FileReader", "set = { file = 'one.txt' }\n")
         + object("two", "FileReader", "set = { file = 'two.txt' }\n")
         + object("echo", "Echo", "connect = { text = 'one.line' }\n"));
    EXPECT_THAT(network->files(), Contains(Key(one)));
    folder.write("one.txt", "first");
    EXPECT_THAT(network->apply({one}).changes, ElementsAre("one.txt changed"));
    EXPECT_THAT(evaluate(), ElementsAre("one", "echo"));
    EXPECT_EQ(text("echo.out"), "first");
}

TEST_F(WatchedNetworkTest, repeatsAllStepsWithTheObjectsThatDependOnTime)
{
    load(chain + clockInQuarters + object("time", "TimeReader")
         + object("sum", "Adder", "connect = { a = 'time.out' }\n"));
    EXPECT_THAT(change(chain + clockInQuarters + object("time", "TimeReader")
                       + object("sum", "Adder", "connect = { a = 'time.out' }\nset = { b = 1 }\n"))
                    .changes,
                ElementsAre("sum.b changed"));
    EXPECT_THAT(evaluate(), UnorderedElementsAre("clock", "time", "sum"));
    EXPECT_EQ(network->context().summary().steps, 5u);
    EXPECT_EQ(text("sum.sum"), "2");
}

TEST_F(WatchedNetworkTest, startsSumsOverTimeAgain)
{
    const std::string sum = clockInQuarters + object("time", "TimeReader")
                            + object("total", "Total", "connect = { in = 'time.out' }\nset = { scale = 1 }\n");
    load(sum);
    EXPECT_EQ(text("total.out"), "2.5");
    EXPECT_THAT(change(replaced(sum, "scale = 1", "scale = 2")).changes, ElementsAre("total.scale changed"));
    evaluate();
    EXPECT_EQ(text("total.out"), "5");
    network->startOver();
    evaluate();
    EXPECT_EQ(text("total.out"), "5");
}

TEST_F(WatchedNetworkTest, loadsTheNetworkAgainIfAChangeReachesAnObjectThatKeepsState)
{
    const std::string counting = object("a", "Adder", "set = { a = 1 }\n")
                                 + object("count", "RunCounter", "connect = { in = 'a.sum' }\n")
                                 + object("b", "Adder", "set = { a = 1 }\n");
    load(counting);
    EXPECT_EQ(text("count.runs"), "1");
    EXPECT_TRUE(change(replaced(counting, "a = 1", "a = 2")).mustEvaluate);
    evaluate();
    EXPECT_EQ(text("count.runs"), "1");
}

TEST_F(WatchedNetworkTest, loadsTheNetworkAgainIfAnEvaluationRemovedAnObject)
{
    const std::string removing = chain + clockInQuarters + object("r", "Remover", "set = { victim = 'c' }\n");
    load(removing);
    EXPECT_FALSE(network->context().text("c.sum"));
    change(replaced(removing, "b = 10", "b = 20"));
    EXPECT_EQ(text("c.a"), "5");
    EXPECT_THAT(evaluate(), Contains("a"));
}

TEST_F(WatchedNetworkTest, loadsARebuiltLibrary)
{
    folder.write("lib/none", "");
    const std::string library = folder.file("lib/mine.so");
    std::filesystem::copy_file(TEST_OBJECTS_FOLDER "/testobjects.so", library);
    ::unsetenv("TARN_LIBRARIES");
    folder.write("net.toml", "format = 1\nlibraries = ['mine']\n" + chain);
    network.emplace(file, Tarn::LoadOptions{});
    ASSERT_TRUE(network->load().empty());
    evaluate();
    EXPECT_THAT(network->files(), Contains(Key(library)));

    // While it is being built, the library that was loaded is used.
    std::filesystem::remove(library);
    const WatchedNetwork::Response missing = network->apply({library});
    EXPECT_THAT(missing.changes, IsEmpty());
    EXPECT_TRUE(network->isLoaded());

    folder.write("lib/mine.so", "broken");
    const WatchedNetwork::Response broken = network->apply({library});
    EXPECT_TRUE(broken.faults);
    EXPECT_THAT(broken.errors, IsEmpty());
    EXPECT_FALSE(network->isLoaded());

    std::filesystem::remove(library);
    std::filesystem::copy_file(TEST_OBJECTS_FOLDER "/testobjects.so", library);
    EXPECT_TRUE(network->apply({library}).mustEvaluate);
    EXPECT_THAT(evaluate(), ElementsAre("a", "b", "c"));
}

TEST_F(WatchedNetworkTest, followsLibrariesThatAreMissingYet)
{
    load(chain);
    folder.write("net.toml", "format = 1\nlibraries = ['testobjects', 'later']\n" + chain);
    EXPECT_TRUE(network->apply({file}).faults);
    const std::string library = folder.file("lib/later.so");
    EXPECT_THAT(network->files(), Contains(Pair(library, Tarn::FileState{})));
    folder.write("lib/later.so", "broken");
    EXPECT_TRUE(network->apply({library}).faults);
    EXPECT_TRUE(network->isLoaded());
    EXPECT_TRUE(change(replaced(chain, "b = 10", "b = 20")).mustEvaluate);
    EXPECT_THAT(network->files(), Not(Contains(Key(library))));
}

TEST_F(WatchedNetworkTest, throwsIfItsFileIsMissingAtTheBeginning)
{
    network.emplace(folder.file("none.toml"), Tarn::LoadOptions{});
    EXPECT_THROW(network->load(), Loam::FileError);
}

} // namespace WatchedNetworkTest
