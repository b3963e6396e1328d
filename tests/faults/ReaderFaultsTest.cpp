#include "Memory.hpp"

#include "tarn/LoadedLibraries.hpp"
#include "tarn/NetworkTexts.hpp"

#include <tarn/network/NetworkInputs.hpp>
#include <tarn/network/NetworkParser.hpp>
#include <tarn/run/EventScript.hpp>
#include <tarn/text/PlacedText.hpp>

#include <trellis/VManagedObject.hpp>
#include <trellis/VValueCreator.hpp>

#include <gmock/gmock.h>

#include <cstdio>
#include <new>
#include <string>
#include <vector>

// Reads texts with a fault at each allocation, and each beginning of them.

namespace ReaderFaultsTest {

using Orla::VManagedObject;
using Orla::VValueCreator;

namespace {

const std::string network = networkHead + clockInQuarters + object("reader", "TimeReader")
                            + object("sum", "Adder", "connect = { a = 'reader.out' }\nset = { b = 2 }\n")
                            + object("all", "Everything", "set = { MultiRange = '[1;2;3]', Range = '4.5:10' }\n")
                            + column("sum", "sum.sum");

const std::string script = "[[event]]\nstep = 0\nkind = \"press\"\nx = 100\ny = 200\nmodifiers = [\"shift\"]\n"
                           "[[event]]\nstep = 2\nkind = \"key\"\nkey = \"r\"\n";

// Texts that some type reads in several parts.
const std::vector<std::string> texts = {"4.5:10",
                                        "5[0,10]@1",
                                        "{1,2,3}@4",
                                        "[{0,0,0};{1,1,1}]",
                                        "[1;2;3]",
                                        "1,2,3,4,5,6,7,8,9,10,",
                                        "b{a}{b}",
                                        "linear@linear|cubic|quartic|",
                                        " -a flag with a long name +another flag with a long name",
                                        "a text that is too long for the space inside a string",
                                        "{0,1,0}{0,0,0}{0,0,1}45"};

class ReaderFaults : public LoadedLibraries {
protected:
    // Fails the first, the second, ... allocation of `read` until none fails. `read` returns its
    // result as a text. A failure must be reported, as std::bad_alloc or by a text that begins
    // with "refused", and everything that was allocated must be released.
    template<class Read>
    static void failInTurn(Read&& read)
    {
        const std::string expected = read();
        for (long number = 0;; ++number) {
            SCOPED_TRACE(number);
            ASSERT_LT(number, 100000);
            const long before = Memory::blocks();
            bool failed = false;
            {
                std::string found = "refused";
                Memory::failAllocation(number);
                try {
                    found = read();
                } catch (const std::bad_alloc&) {
                }
                failed = Memory::hasFailed();
                Memory::failAllocation(-1);
                if (!failed || !found.starts_with("refused")) {
                    EXPECT_EQ(found, expected);
                }
            }
            if (!failed || HasFailure())
                return;
            EXPECT_EQ(Memory::blocks(), before);
        }
    }

    static std::string outcomeOf(const std::string& type, const std::string& text)
    {
        bool ok = false;
        const Orla::StrongPtr<Orla::VValueBase> value = VValueCreator::createValue(type, text, ok);
        return (ok ? "accepted " : "refused ") + value->Text();
    }
};

// Returns the faults of reading and building the network, or its canonical texts.
std::string outcomeOfNetwork(const std::string& text)
{
    Tarn::Faults faults{"net.toml"};
    Tarn::Faults unknown{"net.toml"};
    const Tarn::NetworkFile file = Tarn::parseNetwork(text, faults);
    const Tarn::NetworkInputs inputs = Tarn::readInputs(file, {}, {}, faults, unknown);
    if (!faults.empty())
        return "refused " + faults.lines().front();
    std::string values = std::to_string(inputs.connectionCount) + " connections\n";
    for (const Tarn::NetworkInputs::Object& object : inputs.objects) {
        for (const Tarn::NetworkInputs::Input& input : object.set)
            values += input.name + " = " + input.value->Text() + '\n';
    }
    return values;
}

} // namespace

TEST_F(ReaderFaults, areReportedByEachTypeIfAnAllocationFails)
{
    for (const std::string& type : VValueCreator::names()) {
        if (type == "Ticket") // its text depends on how often it was read
            continue;
        for (const std::string& text : texts) {
            SCOPED_TRACE(type + " reads " + text);
            failInTurn([&] { return outcomeOf(type, text); });
        }
    }
}

TEST_F(ReaderFaults, leaveNoArrayMemoryCounted)
{
    const unsigned long long before = Loam::ChunkBase::TotalMemsize;
    failInTurn([] { return outcomeOf("double[]", "1,2,3,"); });
    EXPECT_EQ(Loam::ChunkBase::TotalMemsize, before);
}

TEST_F(ReaderFaults, leaveNoObjectsOfANetworkThatWasNotRead)
{
    failInTurn([] { return outcomeOfNetwork(network); });
    EXPECT_EQ(VManagedObject::count(), 0u);
}

TEST_F(ReaderFaults, areReportedByScriptsOfEvents)
{
    failInTurn([] {
        Tarn::Faults faults{"events.toml"};
        const std::size_t count = Tarn::parseEvents(script, faults).size();
        return faults.empty() ? std::to_string(count) : "refused " + faults.lines().front();
    });
}

TEST_F(ReaderFaults, havePlacesInNetworksTruncatedAtAnyByte)
{
    std::size_t refused = 0;
    for (std::size_t size = 0; size <= network.size(); ++size) {
        const std::string text = network.substr(0, size);
        SCOPED_TRACE(text);
        const std::string outcome = outcomeOfNetwork(text);
        if (!outcome.starts_with("refused"))
            continue;
        ++refused;
        const Tarn::Place end = Tarn::placeAt(text, size);
        unsigned long line = 0;
        ASSERT_EQ(std::sscanf(outcome.c_str(), "refused net.toml:%lu:", &line), 1) << outcome;
        EXPECT_GE(line, 1u);
        EXPECT_LE(line, end.line);
    }
    // A network can end after each of its tables and settings, but nowhere else.
    EXPECT_GT(refused, network.size() / 2);
    EXPECT_EQ(VManagedObject::count(), 0u);
}

TEST_F(ReaderFaults, havePlacesInScriptsTruncatedAtAnyByte)
{
    for (std::size_t size = 0; size < script.size() - 1; ++size) {
        const std::string text = script.substr(0, size);
        SCOPED_TRACE(text);
        Tarn::Faults faults{"events.toml"};
        const std::vector<Tarn::ScriptedEvent> events = Tarn::parseEvents(text, faults);
        EXPECT_LE(events.size(), 1u);
        for (const std::string& line : faults.lines())
            EXPECT_THAT(line, testing::MatchesRegex("events\\.toml:[0-9]+:[0-9]+: .+"));
    }
}

} // namespace ReaderFaultsTest
