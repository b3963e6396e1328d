#include <quakes/Catalogue.hpp>

#include "Printing.hpp"

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueCreator.hpp>

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace CatalogueTest {

using namespace Quakes;
using Orla::Range;
using testing::ElementsAre;
using testing::IsEmpty;
using Trait = Orla::VValueTrait<Catalogue>;

static_assert(std::is_nothrow_move_constructible_v<Catalogue>);
static_assert(!std::is_convertible_v<std::vector<Quake>, Catalogue>, "a plain list may be unsorted");

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

std::vector<std::string> ids(const Catalogue& catalogue)
{
    std::vector<std::string> result;
    for (std::size_t i = 0; i < catalogue.size(); ++i)
        result.push_back(catalogue[i].id);
    return result;
}

const Quake amboy{1517363399.65,
                  -122.197,
                  46.2035,
                  3.28,
                  0.31,
                  "ml",
                  "uw",
                  "uw61345682",
                  "37km NNE of Amboy, Washington",
                  "earthquake",
                  "https://example.org/uw61345682"};
const std::string amboyText = "1517363399.65,-122.197,46.2035,3.28,0.31,ml,uw,uw61345682,"
                              "\"37km NNE of Amboy, Washington\",earthquake,https://example.org/uw61345682\n";

std::vector<Catalogue> samples()
{
    std::vector<Quake> odd;
    for (const char* place : {"", " ", ",", "\"", "\"\"", "\"quoted\"", "a\nb", "a\r\nb", "\r", "\n", "a\"b,c\nd",
                              "Réunion, “île”", "trailing,", "'", ";\t\\"}) {
        odd.push_back(amboy);
        odd.back().place = place;
        odd.back().id = place;
        odd.back().type = place;
    }
    odd.push_back(amboy);
    odd.back().place = std::string("a\0b", 3);

    std::vector<Quake> extreme;
    for (const double number :
         {0.0, -0.0, 1.0 / 3, -0.1, 1e-310, std::numeric_limits<double>::denorm_min(),
          std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(), 1517363399.65, 1517966773.84}) {
        extreme.push_back(Quake{number, number, number, number, number, "", "", "", "", "", ""});
        extreme.push_back(Quake{number, number, number, std::nullopt, number, "", "", "", "", "", ""});
        extreme.push_back(Quake{number, number, number, number, std::nullopt, "", "", "", "", "", ""});
    }
    const Catalogue three{{quake("late", 2, 5), quake("early", 1, 3), quake("middle", 1.5)}};
    return {
        Catalogue{},        Catalogue{std::vector<Quake>{}},  Catalogue{{amboy}}, Catalogue{{Quake{}}}, Catalogue{odd},
        Catalogue{extreme}, three.withMagnitude(Range{0, 9}), three.until(1.7)};
}

} // namespace

TEST(Catalogue, isSortedByTimeAndKeepsTheOrderOfSimultaneousEvents)
{
    const Catalogue catalogue{{quake("d", 4), quake("b1", 2), quake("a", -1), quake("b2", 2), quake("b3", 2)}};
    EXPECT_THAT(ids(catalogue), ElementsAre("a", "b1", "b2", "b3", "d"));
}

TEST(Catalogue, isEmptyUntilGivenEvents)
{
    EXPECT_TRUE(Catalogue{}.empty());
    EXPECT_EQ(Catalogue{}.size(), 0u);
    EXPECT_FALSE(Catalogue{{amboy}}.empty());
    EXPECT_TRUE(Catalogue{}.until(infinity).empty());
    EXPECT_TRUE(Catalogue{}.withMagnitude(Range{0, 10}).empty());
}

TEST(Catalogue, includesEventsAtTheExactTime)
{
    const Catalogue catalogue{{quake("a", -10), quake("b", 0), quake("c", 20.5), quake("d", 20.5), quake("e", 1e9)}};
    const struct {
        double time;
        std::size_t count;
    } cases[] = {
        {-infinity, 0},  {std::nextafter(-10, -infinity), 0},
        {-10, 1},        {std::nextafter(0, -1), 1},
        {-0.0, 2},       {20, 2},
        {20.5, 4},       {std::nextafter(1e9, 0), 4},
        {1e9, 5},        {infinity, 5},
        {notANumber, 0},
    };
    for (const auto& [time, count] : cases) {
        SCOPED_TRACE(time);
        const Catalogue until = catalogue.until(time);
        ASSERT_EQ(until.size(), count);
        for (std::size_t i = 0; i < count; ++i)
            EXPECT_EQ(until[i].id, catalogue[i].id);
    }
}

TEST(Catalogue, selectsMagnitudesInAnInclusiveRange)
{
    const Catalogue catalogue{{quake("none", 0), quake("negative", 1, -0.8), quake("zero", 2, 0.0),
                               quake("below", 3, std::nextafter(4.5, 0)), quake("at", 4, 4.5),
                               quake("above", 5, std::nextafter(4.5, 9)), quake("huge", 6, 9.5)}};
    const struct {
        Range range;
        std::vector<std::string> selected;
    } cases[] = {
        {{-infinity, infinity}, {"none", "negative", "zero", "below", "at", "above", "huge"}},
        {{4.5, 10}, {"at", "above", "huge"}},
        {{0, 4.5}, {"zero", "below", "at"}},
        {{4.5, 4.5}, {"at"}},
        {{-infinity, 0}, {"negative", "zero"}},
        {{9.5, infinity}, {"huge"}},
        {{-1e308, infinity}, {"negative", "zero", "below", "at", "above", "huge"}},
        {{10, 20}, {}},
        {{4.5, 0}, {}},
        {{infinity, -infinity}, {}},
        {{notANumber, 10}, {}},
        {{0, notANumber}, {}},
    };
    for (const auto& [range, selected] : cases) {
        SCOPED_TRACE(Orla::VValueTrait<Range>::Text(range));
        EXPECT_EQ(ids(catalogue.withMagnitude(range)), selected);
    }
}

TEST(Catalogue, supportsRepeatedSelections)
{
    const Catalogue catalogue{
        {quake("a", 1, 1.0), quake("b", 2, 5.0), quake("c", 3), quake("d", 4, 6.0), quake("e", 5, 7.0)}};
    EXPECT_THAT(ids(catalogue.withMagnitude(Range{5, 9}).until(4)), ElementsAre("b", "d"));
    EXPECT_THAT(ids(catalogue.until(4).withMagnitude(Range{5, 9})), ElementsAre("b", "d"));
    EXPECT_THAT(ids(catalogue.withMagnitude(Range{5, 9}).withMagnitude(Range{0, 6})), ElementsAre("b", "d"));
    EXPECT_THAT(ids(catalogue.until(3).until(9)), ElementsAre("a", "b", "c"));
    EXPECT_THAT(ids(catalogue.withMagnitude(Range{5, 9}).until(0)), IsEmpty());
}

TEST(Catalogue, sharesItsEventsWithCopiesAndSelections)
{
    Catalogue selection;
    const Quake* event = nullptr;
    {
        const Catalogue catalogue{{quake("a", 1, 1.0), quake("b", 2, 5.0), quake("c", 3, 2.0)}};
        event = &catalogue[1];
        const Catalogue copy = catalogue;
        EXPECT_EQ(&copy[1], event);
        selection = catalogue.withMagnitude(Range{4, 6}).until(2);
    }
    ASSERT_EQ(selection.size(), 1u);
    EXPECT_EQ(&selection[0], event);
    EXPECT_EQ(selection[0].id, "b");
}

TEST(Catalogue, equalsAnyCatalogueWithTheSameEvents)
{
    const Catalogue catalogue{{quake("a", 1, 1.0), quake("b", 2, 5.0), quake("c", 3, 2.0)}};
    const Catalogue copy = catalogue;
    EXPECT_EQ(copy, catalogue);
    EXPECT_EQ(catalogue, (Catalogue{{quake("c", 3, 2.0), quake("a", 1, 1.0), quake("b", 2, 5.0)}}));
    EXPECT_EQ(catalogue.until(2).withMagnitude(Range{5, 5}), (Catalogue{{quake("b", 2, 5.0)}}));
    EXPECT_EQ(catalogue.withMagnitude(Range{0, 2}), (Catalogue{{quake("a", 1, 1.0), quake("c", 3, 2.0)}}));
    EXPECT_EQ(catalogue.until(0), Catalogue{});

    EXPECT_FALSE(catalogue == catalogue.until(2));
    EXPECT_FALSE(catalogue == (Catalogue{{quake("a", 1, 1.0), quake("b", 2, 5.0), quake("d", 3, 2.0)}}));
    EXPECT_FALSE(catalogue.withMagnitude(Range{1, 1}) == catalogue.withMagnitude(Range{5, 5}));
}

TEST(Catalogue, differsIfAnyPartOfAnEventDiffers)
{
    const std::vector<std::function<void(Quake&)>> changes{
        [](Quake& event) { event.time += 0.001; },       [](Quake& event) { event.longitude = 0; },
        [](Quake& event) { event.latitude = 0; },        [](Quake& event) { event.depth = 0; },
        [](Quake& event) { event.depth.reset(); },       [](Quake& event) { event.magnitude = 0; },
        [](Quake& event) { event.magnitude.reset(); },   [](Quake& event) { event.magnitudeType = "md"; },
        [](Quake& event) { event.net = "ci"; },          [](Quake& event) { event.id = ""; },
        [](Quake& event) { event.place = "elsewhere"; }, [](Quake& event) { event.type = "explosion"; },
        [](Quake& event) { event.url = "file:///"; },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        SCOPED_TRACE(i);
        Quake changed = amboy;
        changes[i](changed);
        EXPECT_FALSE(Catalogue{{changed}} == Catalogue{{amboy}});
    }
}

TEST(Catalogue, readsBackWhatItWrote)
{
    for (const Catalogue& catalogue : samples()) {
        const std::string text = Trait::Text(catalogue);
        SCOPED_TRACE(text);
        Catalogue copy{{quake("old", 0)}};
        EXPECT_TRUE(Trait::setValueFromText(copy, text));
        EXPECT_EQ(copy, catalogue);
        EXPECT_EQ(Trait::Text(copy), text) << "the second text differs from the first";
    }
}

TEST(Catalogue, keepsTheSignOfZeroInText)
{
    const Catalogue zeros{{Quake{-0.0, -0.0, 0, 0, 0, "", "", "", "", "", ""}}};
    Catalogue copy;
    ASSERT_TRUE(Trait::setValueFromText(copy, Trait::Text(zeros)));
    EXPECT_TRUE(std::signbit(copy[0].time));
    EXPECT_TRUE(std::signbit(copy[0].longitude));
    EXPECT_FALSE(std::signbit(copy[0].latitude));
}

TEST(Catalogue, writesALineForEachEvent)
{
    EXPECT_EQ(Trait::Text(Catalogue{}), "");
    EXPECT_EQ(Trait::Text(Catalogue{{amboy}}), amboyText);

    Quake unknown;
    unknown.time = 1517363400;
    unknown.place = "say \"ah\"\n";
    EXPECT_EQ(Trait::Text(Catalogue{{unknown, amboy}}), amboyText + "1517363400,0,0,,,,,,\"say \"\"ah\"\"\n\",,\n");
}

TEST(Catalogue, readsTextsOfOtherPrograms)
{
    const Catalogue one{{amboy}};
    Quake earlier = amboy;
    earlier.time = 0;
    const Catalogue two{{earlier, amboy}};
    const std::string line = amboyText.substr(0, amboyText.size() - 1);
    const std::string earlierLine = "0,-122.197,46.2035,3.28,0.31,ml,uw,uw61345682,\"37km NNE of Amboy, "
                                    "Washington\",earthquake,https://example.org/uw61345682";
    const struct {
        std::string text;
        Catalogue catalogue;
    } cases[] = {
        {line, one},
        {line + "\r\n", one},
        {line + "\n" + earlierLine, two},
        {earlierLine + "\r\n" + line + "\n", two},
        {"\"1517363399.65\",\"-122.197\",46.2035,3.28,0.31,\"ml\",\"uw\",uw61345682,"
         "\"37km NNE of Amboy, Washington\",\"earthquake\",https://example.org/uw61345682",
         one},
        {" 1.51736339965e9,-122.1970, +46.2035,3.28,.31,ml,uw,uw61345682,"
         "\"37km NNE of Amboy, Washington\",earthquake,https://example.org/uw61345682",
         one},
        {"1,2,3,,\"\",,,,,,", Catalogue{{Quake{1, 2, 3, std::nullopt, std::nullopt, "", "", "", "", "", ""}}}},
    };
    for (const auto& [text, catalogue] : cases) {
        SCOPED_TRACE(text);
        Catalogue read;
        EXPECT_TRUE(Trait::setValueFromText(read, text));
        EXPECT_EQ(read, catalogue);
    }
}

TEST(Catalogue, keepsItsValueWhenTheTextIsRefused)
{
    const std::string line = "1,2,3,4,5,ml,uw,id,place,earthquake,";
    Catalogue catalogue{{amboy}};
    ASSERT_TRUE(Trait::setValueFromText(catalogue, line)) << "each row below is a variant with a fault";

    for (const std::string& text : std::vector<std::string>{
             "\n",
             ",",
             " ",
             "earthquakes",
             "1,2,3,4,5,ml,uw,id,place,earthquake",   // ten parts
             "1,2,3,4,5,ml,uw,id,place,earthquake,,", // twelve
             ",2,3,4,5,ml,uw,id,place,earthquake,",   // no time
             "1,,3,4,5,ml,uw,id,place,earthquake,",   // no longitude
             "1,2,,4,5,ml,uw,id,place,earthquake,",   // no latitude
             "noon,2,3,4,5,ml,uw,id,place,earthquake,",
             "1,2x,3,4,5,ml,uw,id,place,earthquake,",
             "1,2,3 ,4,5,ml,uw,id,place,earthquake,",
             "1,2,3,deep,5,ml,uw,id,place,earthquake,",
             "1,2,3,4,strong,ml,uw,id,place,earthquake,",
             "nan,2,3,4,5,ml,uw,id,place,earthquake,",
             "1,inf,3,4,5,ml,uw,id,place,earthquake,",
             "1,2,-inf,4,5,ml,uw,id,place,earthquake,",
             "1,2,3,nan,5,ml,uw,id,place,earthquake,",
             "1,2,3,4,1e999,ml,uw,id,place,earthquake,",
             "1,2,3,4,5,ml,uw,id,\"place,earthquake,", // an unclosed quote
             "1,2,3,4,5,ml,uw,id,place,\"earthquake,",
             "1,2,3,4,5,ml,uw,id,\"place\" ,earthquake,", // text after a quote
             "1,2,3,4,5,ml,uw,id,pl\"ace,earthquake,",    // a quote inside
             "1,2,3,4,5,ml,uw,id,pla\nce,earthquake,",    // a line break inside
             line + "\n\n",
             line + "\r" + line,
             line + "\n" + line.substr(0, 20),
         }) {
        SCOPED_TRACE(text);
        Catalogue kept{{amboy}};
        EXPECT_FALSE(Trait::setValueFromText(kept, text));
        EXPECT_EQ(kept, Catalogue{{amboy}});
    }
}

TEST(Catalogue, isRegisteredAsValueAndAsInput)
{
    bool ok = false;
    const Orla::StrongPtr<Orla::VValueBase> value = Orla::VValueCreator::createValue("Catalogue", amboyText, ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(value->Text(), amboyText);
    EXPECT_TRUE(Orla::TypedSlotCreator::find(typeid(Catalogue)));
    EXPECT_EQ(Orla::VTypeLabel::of(typeid(Catalogue)), "earthquake catalogue");

    const Orla::StrongPtr<Orla::VValueBase> copy = value->copy();
    EXPECT_FALSE(copy->isDifferentFrom(value));
    EXPECT_FALSE(copy->setValueFromText("no event"));
    EXPECT_FALSE(copy->isDifferentFrom(value));
    EXPECT_TRUE(copy->setValueFromText(""));
    EXPECT_TRUE(copy->isDifferentFrom(value));

    Orla::VValueCreator::createValue("Catalogue", "no event", ok);
    EXPECT_FALSE(ok);
}

} // namespace CatalogueTest
