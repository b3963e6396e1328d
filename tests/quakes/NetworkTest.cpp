#include "earth/Evaluation.hpp"

#include <fathom/TypedSlot.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VTime.hpp>

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VValueCreator.hpp>

#include <gmock/gmock.h>

#include <dlfcn.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace NetworkTest {

using Orla::StrongPtr;
using Orla::VObject;
using testing::Contains;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

// Provides the time of its input to the whole network.
class Clock : public VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        return m_now(request.valuePool()) << m_time.value(request.valuePool());
    }

private:
    Orla::TypedSlot<Orla::VTime> m_time{this, "time", Orla::VTime{0}, 0};
    Orla::VOutput<Orla::VTime> m_now{this, "now", Orla::VTime{0}};
};

const StrongPtr<Orla::VCreationPreferences> provider{new Orla::VCreationPreferences("default", "GlobalTime")};
const Orla::VObjectType<Clock> clockType{"GlobalTime", provider};

struct Registries {
    std::vector<std::string> values = Orla::VValueCreator::names();
    std::vector<std::string> objects = Orla::VObjectCreator::names();
    std::vector<std::string> slots = Orla::TypedSlotCreator::typeKeys();
    std::size_t managed = Orla::VManagedObject::count();

    friend bool operator==(const Registries&, const Registries&) = default;
};

class Library {
public:
    Library() : m_handle{dlopen(QUAKES_LIBRARY, RTLD_NOW | RTLD_LOCAL)}
    {
        if (!m_handle)
            throw std::runtime_error{dlerror()};
    }

    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { dlclose(m_handle); }

    static bool isLoaded(const char* file)
    {
        void* const handle = dlopen(file, RTLD_NOW | RTLD_NOLOAD);
        if (handle)
            dlclose(handle);
        return handle != nullptr;
    }

private:
    void* m_handle;
};

// The objects of quakes.toml, created in the same order and from the same texts.
class Network {
public:
    using Texts = std::vector<std::pair<const char*, const char*>>;

    Network()
    {
        add(clock, "GlobalTime", "clock", {{"time", "0[0,1]@0.015625"}});
        add(reader, "QuakeReader", "reader", {{"file", EARTHQUAKES_JSON}});
        add(instant, "UtcInstant", "instant", {{"range", range}});
        add(all, "QuakeFilter", "all", {{"range", range}});
        add(strong, "QuakeFilter", "strong", {{"range", range}, {"magnitude", "4.5:10"}});
        add(view, "QuakeView", "view",
            {{"camera", "{-7.5e6,-6.3e6,8.2e6}{0,0,0}{0,0,1}40"},
             {"aspect", "1.3333333333333333"},
             {"near", "4.5e6"},
             {"far", "1e7"}});
        connect(*view, "catalog", *all, "catalog");
        Orla::VScheduler::scheduleAll(pool);
    }

    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;

    ~Network()
    {
        for (const StrongPtr<VObject>& object : {clock, reader, instant, all, strong, view})
            Orla::VManagedObject::remove(object);
    }

    std::string row(std::size_t step) const
    {
        return std::to_string(step) + ',' + readText(*instant, "utc", pool) + ',' + readText(*all, "count", pool) + ','
               + readText(*strong, "count", pool) + ',' + readText(*view, "inside", pool) + ','
               + readText(*view, "straddling", pool) + ',' + readText(*view, "outside", pool);
    }

    StrongPtr<VObject> clock, reader, instant, all, strong, view;
    StrongPtr<Orla::ValuePool> pool{new Orla::ValuePool("week")};

private:
    // Objects with a catalogue input are connected to the reader.
    void add(StrongPtr<VObject>& object, const char* type, const char* name, const Texts& texts)
    {
        const StrongPtr<Orla::VObjectCreator> creator = Orla::VObjectCreator::find(type);
        if (!creator)
            throw std::runtime_error{std::string("no object type ") + type};
        object = creator->create(name, 0, nullptr);
        for (const auto& [input, text] : texts)
            EXPECT_TRUE(object->findSlot(input)->setInitialText(text)) << name << '.' << input;
        if (object->findSlot("catalog"))
            connect(*object, "catalog", *reader, "catalog");
        VObject::finishCreation(object, {}, creator);
    }

    static constexpr const char* range = "1517356800:1518048000";
};

std::vector<std::string> expectedRows()
{
    std::ifstream stream{EXPECTED_TABLE};
    std::vector<std::string> rows;
    for (std::string line; std::getline(stream, line);) {
        if (!line.starts_with('#') && !line.starts_with("step"))
            rows.push_back(line);
    }
    return rows;
}

} // namespace

TEST(QuakesLibrary, registersItsTypesAndRemovesThem)
{
    const Registries before;
    ASSERT_FALSE(Library::isLoaded(QUAKES_LIBRARY) || Library::isLoaded(EARTH_LIBRARY));
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        {
            const Library library;
            EXPECT_THAT(Orla::VValueCreator::names(), Contains("Catalogue"));
            EXPECT_THAT(Orla::VObjectCreator::names(), Contains("QuakeReader"));
            EXPECT_THAT(Orla::VObjectCreator::names(), Contains("QuakeFilter"));
            EXPECT_THAT(Orla::VObjectCreator::names(), Contains("UtcInstant"));
            EXPECT_THAT(Orla::VObjectCreator::names(), Contains("CoastLines")) << "of the library earth";
            const Network network;
            EXPECT_EQ(Orla::VScheduler::run(network.pool).failures, 0u);
        }
        EXPECT_EQ(Registries{}, before);
        EXPECT_FALSE(Library::isLoaded(QUAKES_LIBRARY));
        EXPECT_FALSE(Library::isLoaded(EARTH_LIBRARY)) << "loaded with it";
    }
}

TEST(QuakesLibrary, countsTheWeekInStepsOfThreeHours)
{
    const std::vector<std::string> expected = expectedRows();
    ASSERT_THAT(expected, SizeIs(65));

    const Library library;
    const Warnings warnings;
    const Network network;
    std::vector<std::string> rows;
    Orla::VTime time{0, 0, 1, 0.015625, "", "", ""};
    for (std::size_t step = 0; step < 65; ++step) {
        SCOPED_TRACE(step);
        if (step > 0)
            write(*network.clock, "time", network.pool, (time++, time));
        const Orla::VScheduler::Summary summary = Orla::VScheduler::run(network.pool);
        EXPECT_EQ(summary.failures, 0u);
        // The file is read only at the first step; the view runs only when new events
        // have happened.
        const auto counts = [](const std::string& row) { return row.substr(row.find("Z,")); };
        const bool moreHappened = step == 0 || counts(rows.back()) != counts(expected[step]);
        EXPECT_EQ(summary.updates, (step == 0 ? 5u : 4u) + (moreHappened ? 1u : 0u));
        EXPECT_EQ(Orla::VScheduler::run(network.pool).updates, 0u);
        rows.push_back(network.row(step));
    }
    EXPECT_THAT(rows, ElementsAreArray(expected));
    EXPECT_THAT(warnings.all(), IsEmpty());
}

TEST(QuakesLibrary, evaluatesTimesInAnyOrder)
{
    const std::vector<std::string> expected = expectedRows();
    ASSERT_THAT(expected, SizeIs(65));

    const Library library;
    const Network network;
    for (const std::size_t step : {64u, 0u, 32u, 1u, 56u, 57u, 0u}) {
        write(*network.clock, "time", network.pool, Orla::VTime{static_cast<double>(step) / 64, 0, 1});
        Orla::VScheduler::run(network.pool);
        EXPECT_EQ(network.row(step), expected[step]);
    }
}

TEST(QuakesLibrary, refusesToConnectDifferentTypesAndNamesBoth)
{
    const Library library;
    const Network network;
    const StrongPtr<Orla::VSlot> count = network.all->findOutput("count");
    const Loam::Result<void> done = network.strong->tryAttachOutput(count, network.strong->findSlot("catalog"), "");
    ASSERT_FALSE(done);
    EXPECT_EQ(done.reason(), "it gives number where earthquake catalogue is expected");
}

} // namespace NetworkTest
