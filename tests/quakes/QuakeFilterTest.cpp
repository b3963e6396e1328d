#include "earth/Evaluation.hpp"
#include "Printing.hpp"

#include <fathom/Range.hpp>
#include <fathom/VTime.hpp>

#include <trellis/VScheduler.hpp>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace QuakeFilterTest {

using Orla::Range;
using Orla::VTime;
using Quakes::Catalogue;
using Quakes::Quake;
using testing::ElementsAre;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

Quake quake(const std::string& id, double time, std::optional<double> magnitude = std::nullopt)
{
    Quake result;
    result.id = id;
    result.time = time;
    result.magnitude = magnitude;
    return result;
}

const Catalogue someQuakes{{quake("a", 100, 2.5), quake("b", 125, 4.5), quake("c", 150.25),
                            quake("d", 150.5, std::nextafter(4.5, 0)), quake("e", 200, 7.0)}};

std::vector<std::string> selected(const Evaluation& filter)
{
    const Catalogue catalogue = filter.value<Catalogue>("catalog");
    EXPECT_EQ(filter.text("count"), std::to_string(catalogue.size()));
    std::vector<std::string> ids;
    for (std::size_t i = 0; i < catalogue.size(); ++i)
        ids.push_back(catalogue[i].id);
    return ids;
}

} // namespace

TEST(QuakeFilter, selectsEventsUpToTheCurrentTime)
{
    Evaluation filter{"QuakeFilter"};
    filter.set("catalog", someQuakes);
    filter.set("range", Range{100, 200});
    const struct {
        double time;
        std::vector<std::string> ids;
    } cases[] = {
        {0, {"a"}},
        {-infinity, {}},
        {0.2499999999, {"a"}},
        {0.25, {"a", "b"}},
        {0.5, {"a", "b"}},
        {0.505, {"a", "b", "c", "d"}},
        {0.999, {"a", "b", "c", "d"}},
        {1, {"a", "b", "c", "d", "e"}},
        {infinity, {"a", "b", "c", "d", "e"}},
        {notANumber, {}},
        {-1, {}},
        {7, {"a", "b", "c", "d", "e"}},
    };
    for (const auto& [time, ids] : cases) {
        SCOPED_TRACE(time);
        filter.set("time", VTime{time});
        EXPECT_EQ(filter.run().failures, 0u);
        EXPECT_EQ(selected(filter), ids);
    }
}

TEST(QuakeFilter, includesAnEventAtTheExactMillisecond)
{
    const Catalogue oneQuake{{quake("first", 1517363399650 / 1000.0)}};
    Evaluation filter{"QuakeFilter"};
    filter.set("catalog", oneQuake);
    const struct {
        const char* range;
        std::vector<std::string> ids;
    } cases[] = {
        {"1517363399.649:0", {}},
        {"1517363399.65:0", {"first"}},
        {"1517363399.651:0", {"first"}},
    };
    for (const auto& [range, ids] : cases) {
        SCOPED_TRACE(range);
        filter.setText("range", range);
        filter.run();
        EXPECT_EQ(selected(filter), ids);
    }
}

TEST(QuakeFilter, selectsMagnitudesInAnInclusiveRange)
{
    Evaluation filter{"QuakeFilter"};
    filter.set("catalog", someQuakes);
    filter.set("time", VTime{1});
    filter.set("range", Range{0, 1000});
    const struct {
        const char* magnitude;
        std::vector<std::string> ids;
    } cases[] = {
        {"4.5:10", {"b", "e"}}, {"2.5:4.5", {"a", "b", "d"}},
        {"4.5:4.5", {"b"}},     {"7:7", {"e"}},
        {"10:4.5", {}},         {"8:9", {}},
        {"nan:9", {}},          {"4.5:10", {"b", "e"}},
    };
    for (const auto& [magnitude, ids] : cases) {
        SCOPED_TRACE(magnitude);
        filter.setText("magnitude", magnitude);
        EXPECT_EQ(filter.run().failures, 0u);
        EXPECT_EQ(selected(filter), ids);
    }
}

TEST(QuakeFilter, selectsUnknownMagnitudesOnlyInTheUnboundedRange)
{
    Evaluation filter{"QuakeFilter"};
    filter.set("catalog", someQuakes);
    filter.set("range", Range{1000, 1000});
    filter.run();
    EXPECT_THAT(selected(filter), ElementsAre("a", "b", "c", "d", "e"));

    filter.setText("magnitude", "-100:inf");
    filter.run();
    EXPECT_THAT(selected(filter), ElementsAre("a", "b", "d", "e"));

    filter.setText("magnitude", "-inf:inf");
    filter.run();
    EXPECT_THAT(selected(filter), ElementsAre("a", "b", "c", "d", "e"));
}

TEST(QuakeFilter, selectsNothingFromNothing)
{
    Evaluation filter{"QuakeFilter"};
    filter.set("time", VTime{infinity});
    EXPECT_EQ(filter.run().failures, 0u);
    EXPECT_EQ(filter.text("count"), "0");
    EXPECT_EQ(filter.text("catalog"), "");
    filter.setText("magnitude", "1:2");
    EXPECT_EQ(filter.run().failures, 0u);
    EXPECT_EQ(filter.text("count"), "0");
}

TEST(QuakeFilter, followsAReplacedCatalogue)
{
    Evaluation filter{"QuakeFilter"};
    filter.set("range", Range{1000, 1000});
    filter.setText("magnitude", "4.5:10");
    const Catalogue one{{quake("x", 1, 5.0), quake("y", 2, 1.0)}};
    const Catalogue other{{quake("z", 1, 1.0), quake("w", 2, 5.0)}};
    for (const Catalogue& catalogue : {one, other, one}) {
        filter.set("catalog", catalogue);
        filter.run();
        EXPECT_EQ(filter.value<Catalogue>("catalog"), catalogue.withMagnitude(Range{4.5, 10}));
    }
    filter.set("catalog", Catalogue{});
    filter.run();
    EXPECT_EQ(filter.text("count"), "0");
}

TEST(QuakeFilter, keepsPoolsIndependent)
{
    Evaluation filter{"QuakeFilter"};
    const Orla::StrongPtr<Orla::ValuePool> other{new Orla::ValuePool("other")};
    filter.set("catalog", someQuakes);
    filter.set("range", Range{1000, 1000});
    filter.setText("magnitude", "4.5:10");
    write(*filter.object, "catalog", other, Catalogue{{quake("z", 1, 3.0)}});
    write(*filter.object, "range", other, Range{1000, 1000});
    for (int round = 0; round < 2; ++round) {
        filter.set("time", VTime{static_cast<double>(round)});
        write(*filter.object, "time", other, VTime{static_cast<double>(round)});
        filter.run();
        Orla::VScheduler::run(other);
        EXPECT_EQ(filter.text("count"), "2");
        EXPECT_EQ(readText(*filter.object, "count", other), "1");
    }
}

TEST(QuakeFilter, leavesItsInputUnchanged)
{
    Evaluation filter{"QuakeFilter"};
    filter.set("catalog", someQuakes);
    filter.set("range", Range{125, 125});
    filter.run();
    EXPECT_THAT(selected(filter), ElementsAre("a", "b"));
    const Orla::StrongPtr<Orla::VValueBase> input = filter.object->findSlot("catalog")->getValueBase(filter.pool);
    EXPECT_EQ(input->Text(), Orla::VValueTrait<Catalogue>::Text(someQuakes));
}

TEST(QuakeFilter, makesItsReadersDueOnlyWhenTheSelectionChanges)
{
    Evaluation filter{"QuakeFilter"};
    Evaluation reader{"QuakeFilter"};
    connect(*reader.object, "catalog", *filter.object, "catalog");
    filter.set("catalog", someQuakes);
    filter.set("range", Range{100, 200});
    write(*reader.object, "range", filter.pool, Range{1000, 1000});
    EXPECT_EQ(filter.run().updates, 2u);
    EXPECT_EQ(readText(*reader.object, "count", filter.pool), "1");

    EXPECT_EQ(filter.run().updates, 0u);

    filter.set("time", VTime{0.1});
    EXPECT_EQ(filter.run().updates, 1u) << "no further event, so the reader does not run";

    filter.set("time", VTime{0.25});
    EXPECT_EQ(filter.run().updates, 2u);
    EXPECT_EQ(readText(*reader.object, "count", filter.pool), "2");

    filter.setText("magnitude", "0:9");
    EXPECT_EQ(filter.run().updates, 1u) << "the same events are selected";
}

namespace {

Quake quakeOf(const std::string& id, const std::string& net, const std::string& magnitudeType, const std::string& type)
{
    Quake result = quake(id, 1, 5.0);
    result.net = net;
    result.magnitudeType = magnitudeType;
    result.type = type;
    return result;
}

// A filter for data with all kinds of choices.
class QuakeFilterChoices : public testing::Test {
protected:
    QuakeFilterChoices()
    {
        filter.set("range", Range{1000, 1000});
        filter.set("catalog", Catalogue{{quakeOf("a", "us", "mww", "earthquake"), quakeOf("b", "ci", "ml", "explosion"),
                                         quakeOf("c", "ci", "ml", "earthquake"), quakeOf("d", "ak", "", "quarry blast"),
                                         quakeOf("e", "us", "ml", "")}});
    }

    std::vector<std::string> run()
    {
        EXPECT_EQ(filter.run().failures, 0u);
        return selected(filter);
    }

    // Returns the text of an input after the run.
    std::string held(const std::string& input) const
    {
        return filter.object->findSlot(input)->getValueBase(filter.pool)->Text();
    }

    Evaluation filter{"QuakeFilter"};
};

} // namespace

TEST_F(QuakeFilterChoices, areFilledInFromTheData)
{
    EXPECT_THAT(run(), ElementsAre("a", "b", "c", "d", "e"));
    EXPECT_EQ(held("networks"), "@{ak}{ci}{us}");
    EXPECT_EQ(held("magnitudeType"), "any@any|ml|mww|");
}

TEST_F(QuakeFilterChoices, selectNetworks)
{
    filter.setText("networks", "{us}{ak}");
    EXPECT_THAT(run(), ElementsAre("a", "d", "e"));
    EXPECT_EQ(held("networks"), "{us}{ak}@{ak}{ci}{us}");
    filter.setText("networks", "{ci}");
    EXPECT_THAT(run(), ElementsAre("b", "c")) << "another selection of the same choices";
    filter.setText("networks", "@");
    EXPECT_EQ(run().size(), 5u) << "an empty selection accepts all";
}

TEST_F(QuakeFilterChoices, selectATypeOfMagnitude)
{
    filter.setText("magnitudeType", "ml@ml|");
    EXPECT_THAT(run(), ElementsAre("b", "c", "e"));
    EXPECT_EQ(held("magnitudeType"), "ml@any|ml|mww|");
    filter.setText("magnitudeType", "mww");
    EXPECT_THAT(run(), ElementsAre("a"));
    filter.setText("magnitudeType", "any");
    EXPECT_EQ(run().size(), 5u);
}

TEST_F(QuakeFilterChoices, surviveOtherData)
{
    filter.setText("magnitudeType", "mww@mww|");
    filter.setText("networks", "{us}");
    run();
    filter.set("catalog", Catalogue{{quakeOf("x", "uw", "md", "earthquake")}});
    EXPECT_THAT(run(), ElementsAre());
    EXPECT_EQ(held("magnitudeType"), "mww@any|md|");
    EXPECT_EQ(held("networks"), "{us}@{uw}");
    filter.set("catalog", Catalogue{{quakeOf("y", "us", "mww", ""), quakeOf("z", "us", "ml", "")}});
    EXPECT_THAT(run(), ElementsAre("y"));
    EXPECT_EQ(held("magnitudeType"), "mww@any|ml|mww|");
}

TEST_F(QuakeFilterChoices, selectKindsByFlags)
{
    const struct {
        const char* kinds;
        std::vector<std::string> ids;
    } cases[] = {
        {"+earthquake", {"a", "c"}},
        {"-earthquake", {"b", "d", "e"}},
        {"+earthquake -explosion", {"a", "c"}},
        {"-explosion -quarry_blast", {"a", "c", "e"}},
        {"quarry_blast explosion", {"b", "d"}},
        {"", {"a", "b", "c", "d", "e"}},
    };
    for (const auto& [kinds, ids] : cases) {
        SCOPED_TRACE(kinds);
        filter.setText("kinds", kinds);
        EXPECT_EQ(run(), ids);
    }
}

TEST_F(QuakeFilterChoices, canBeCombined)
{
    filter.setText("networks", "{ci}{us}");
    filter.setText("magnitudeType", "ml@ml|");
    filter.setText("kinds", "-explosion");
    EXPECT_THAT(run(), ElementsAre("c", "e"));
}

TEST_F(QuakeFilterChoices, failForAKindThatTheDataDoesNotHave)
{
    filter.setText("kinds", "+earthquake +quake");
    EXPECT_EQ(filter.run().failures, 1u);
    const auto failures = Orla::VScheduler::failures(filter.pool);
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_EQ(failures[0].reason, "no event has the kind quake; the data has earthquake, explosion, quarry_blast");
    filter.setText("kinds", "+earthquake");
    EXPECT_THAT(run(), ElementsAre("a", "c"));
}

TEST_F(QuakeFilterChoices, belongToTheirPool)
{
    const Orla::StrongPtr<Orla::ValuePool> other{new Orla::ValuePool("other")};
    write(*filter.object, "range", other, Range{1000, 1000});
    write(*filter.object, "catalog", other, Catalogue{{quakeOf("x", "uw", "md", "earthquake")}});
    filter.setText("magnitudeType", "ml@ml|");
    filter.setText("networks", "{ci}");
    run();
    Orla::VScheduler::run(other);
    EXPECT_EQ(readText(*filter.object, "count", other), "1");
    const auto heldThere = [&](const char* input) {
        return filter.object->findSlot(input)->getValueBase(other)->Text();
    };
    EXPECT_EQ(heldThere("magnitudeType"), "any@any|md|");
    EXPECT_EQ(heldThere("networks"), "@{uw}");
    EXPECT_EQ(held("magnitudeType"), "ml@any|ml|mww|");
}

TEST_F(QuakeFilterChoices, settleAfterOneRun)
{
    EXPECT_EQ(filter.run().updates, 1u) << "publishing the choices must not cause another run";
}

} // namespace QuakeFilterTest
