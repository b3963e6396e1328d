#include <tarn/network/SlotLookup.hpp>

#include <trellis/VObject.hpp>

#include <fathom/Double.hpp>
#include <fathom/TypedSlot.hpp>

#include <gmock/gmock.h>

#include <list>

namespace SlotLookupTest {

using namespace Tarn;
using testing::ElementsAre;

namespace {

class Inputs final : public Orla::VObject {
public:
    Inputs() : VObject{"inputs", 0, nullptr}
    {
        for (const char* name : {"a", "a.b", "c=d", "c"})
            m_slots.emplace_back(this, name, 0.0, 0);
    }

    bool update(Orla::VRequest&, double) override { return true; }

private:
    std::list<Orla::TypedSlot<double>> m_slots;
};

std::string found(const Orla::VSlotSet& slots, std::string_view text, char separator)
{
    const auto slot = findSlotAtStart(slots, text, separator);
    return slot ? slot->name() : "nothing";
}

} // namespace

TEST(SlotLookup, findsTheSlotWithTheLongestMatchingName)
{
    const auto object = Loam::makeStrong<Inputs>();
    const struct {
        const char* text;
        char separator;
        const char* name;
    } cases[] = {
        {"a", '.', "a"},        {"a.x", '.', "a"},    {"a.b", '.', "a.b"}, {"a.b.x", '.', "a.b"}, {"a.bx", '.', "a"},
        {"ax", '.', "nothing"}, {"", '.', "nothing"}, {"c=1", '=', "c"},   {"c=d=1", '=', "c=d"}, {"c=d", '=', "c=d"},
    };
    for (const auto& [text, separator, name] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(found(object->inputs(), text, separator), name);
    }
    EXPECT_THAT(namesOf(object->inputs()), ElementsAre("a", "a.b", "c=d", "c"));
}

TEST(ObjectNames, findTheLongestNameBeforeADot)
{
    ObjectNames names;
    EXPECT_TRUE(names.add("a", 0));
    EXPECT_TRUE(names.add("a.b", 1));
    EXPECT_TRUE(names.add(".", 2));
    EXPECT_FALSE(names.add("a.b", 3));
    EXPECT_EQ(names.find("a.b"), 1u);
    EXPECT_EQ(names.find("b"), ObjectNames::npos);

    const struct {
        const char* text;
        std::size_t number;
        const char* rest;
    } cases[] = {
        {"a.x", 0, "x"},
        {"a.b.x", 1, "x"},
        {"a.b.x.y", 1, "x.y"},
        {"a.b", 0, "b"},
        {"a.bc.x", 0, "bc.x"},
        {"a.", 0, ""},
        {"..x", 2, "x"},
        {"a", ObjectNames::npos, "untouched"},
        {".a", ObjectNames::npos, "untouched"},
        {"", ObjectNames::npos, "untouched"},
        {"long name without an object.x", ObjectNames::npos, "untouched"},
    };
    for (const auto& [text, number, expected] : cases) {
        SCOPED_TRACE(text);
        std::string_view rest = "untouched";
        EXPECT_EQ(names.findAtStart(text, rest), number);
        EXPECT_EQ(rest, expected);
    }
}

TEST(ObjectNames, countRemovedNamesOut)
{
    ObjectNames names;
    names.add("c", 0);
    names.add("a", 1);
    names.add("b", 2);
    EXPECT_TRUE(names.remove("a"));
    EXPECT_FALSE(names.remove("a"));
    EXPECT_EQ(names.find("c"), 0u);
    EXPECT_EQ(names.find("a"), ObjectNames::npos);
    EXPECT_EQ(names.find("b"), 1u);
    EXPECT_TRUE(names.add("a", 2));
}

TEST(ObjectNames, keepTheNumberOfARenamedObject)
{
    ObjectNames names;
    names.add("a", 0);
    names.add("b", 1);
    EXPECT_TRUE(names.rename("a", "a long name"));
    EXPECT_FALSE(names.rename("a", "c"));
    EXPECT_FALSE(names.rename("b", "a long name"));
    EXPECT_THAT(names.names(), ElementsAre("a long name", "b"));
    std::string_view rest;
    EXPECT_EQ(names.findAtStart("a long name.x", rest), 0u);
}

TEST(ObjectNames, findNothingWhenEmpty)
{
    std::string_view rest;
    EXPECT_EQ(ObjectNames{}.findAtStart(".x", rest), ObjectNames::npos);
}

} // namespace SlotLookupTest
