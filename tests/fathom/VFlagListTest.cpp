#include <fathom/VFlagList.hpp> // first: the header must be self-contained

#include "Recorders.hpp"
#include "support/SlotLaws.hpp"
#include "support/ValueLaws.hpp"

#include <fathom/VOutput.hpp>

#include <gmock/gmock.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace VFlagListTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Trait = VValueTrait<FlagList>;
using BoolInput = VSlotContainer::in<bool[], -32000>;

static_assert(std::is_base_of_v<TypedSlot<FlagList>, TypedSlot<bool[]>>);
static_assert(std::is_base_of_v<TypedSlot<bool[]>, BoolInput>);
static_assert(std::is_default_constructible_v<BoolInput> && std::is_copy_assignable_v<BoolInput>);
static_assert(!std::is_default_constructible_v<TypedSlot<FlagList>>, "only TypedSlot<bool[]> may be declared later");
static_assert(!std::is_convertible_v<std::string, FlagList>);

} // namespace VFlagListTest

template<>
std::vector<Orla::FlagList> samples<Orla::FlagList>()
{
    using Orla::FlagList;
    return {FlagList(),         FlagList("a -b", ' '), FlagList("a b", ' '),
            FlagList("+", ' '), FlagList("-", ' '),    FlagList("+-x -+y --", ' ')};
}

namespace VFlagListTest {

INSTANTIATE_TYPED_TEST_SUITE_P(FlagList, ValueLaws, FlagList);
INSTANTIATE_TYPED_TEST_SUITE_P(FlagList, SlotLaws, FlagList);

TEST(FlagList, readsTheStateFromASignAndTheNameFromTheRest)
{
    const struct {
        const char* item;
        const char* name;
        bool isOn;
    } cases[] = {
        {"verbose", "verbose", true},
        {"+verbose", "verbose", true},
        {"-verbose", "verbose", false},
        {"+", "", true},
        {"-", "", false},
        {"+-x", "-x", true},
        {"--x", "-x", false},
        {"-+x", "+x", false},
        {" -x ", " -x ", true},
        {"x-y", "x-y", true},
    };
    for (const auto& [item, name, isOn] : cases) {
        SCOPED_TRACE(item);
        FlagList flags;
        EXPECT_TRUE(flags.addFlag(item));
        EXPECT_THAT(flags, ElementsAre(Pair(name, isOn)));
    }
}

TEST(FlagList, refusesAnEmptyItem)
{
    FlagList flags("a", ' ');
    EXPECT_FALSE(flags.addFlag(""));
    EXPECT_EQ(flags.size(), 1u);
}

TEST(FlagList, keepsTheLastStateOfAName)
{
    FlagList flags;
    bool present = false;
    EXPECT_TRUE(flags.addFlag("-verbose"));
    EXPECT_FALSE(flags("verbose", present));
    EXPECT_TRUE(present);
    EXPECT_TRUE(flags.addFlag("verbose"));
    EXPECT_TRUE(flags("verbose", present));
    EXPECT_TRUE(flags.addFlag("-verbose"));
    EXPECT_THAT(flags, ElementsAre(Pair("verbose", false)));
}

TEST(FlagList, distinguishesOffFromNeverSet)
{
    const FlagList flags("on -off", ' ');
    bool present = false;
    EXPECT_TRUE(flags("on", present));
    EXPECT_TRUE(present);
    EXPECT_FALSE(flags("off", present));
    EXPECT_TRUE(present);
    EXPECT_FALSE(flags("unknown", present));
    EXPECT_FALSE(present);
    EXPECT_TRUE(flags.contains("on"));
    EXPECT_TRUE(flags.contains("off"));
    EXPECT_FALSE(flags.contains("unknown"));
    EXPECT_FALSE(flags.contains("On"));
}

TEST(FlagList, answersForOneFlagWithoutAskingWhetherItIsPresent)
{
    const FlagList flags("a -b", ' ');
    EXPECT_TRUE(flags.isOn("a"));
    EXPECT_FALSE(flags.isOn("b"));
    EXPECT_EQ(flags.isOn("c"), flags.absentValue());
    EXPECT_FALSE(flags.absentValue());
}

TEST(FlagList, forgetsARemovedFlag)
{
    FlagList flags("a -b", ' ');
    EXPECT_TRUE(flags.removeFlag("a"));
    EXPECT_FALSE(flags.contains("a"));
    EXPECT_EQ(flags, FlagList("-b", ' '));
    EXPECT_FALSE(flags.removeFlag("a"));
    EXPECT_FALSE(flags.removeFlag("-b")) << "a sign is part of the name";
    EXPECT_TRUE(flags.removeFlag("b"));
    EXPECT_TRUE(flags.empty());
}

TEST(FlagList, addsThePiecesOfATextAndReturnsTheirNumber)
{
    FlagList flags("a -z", ' ');
    EXPECT_EQ(flags.addFlagsFromString("-a,,b", ','), 3u);
    EXPECT_THAT(flags, ElementsAre(Pair("a", false), Pair("b", true), Pair("z", false)));
    EXPECT_EQ(flags.addFlagsFromString("", ','), 0u);
    EXPECT_EQ(flags.addFlagsFromString("c,", ','), 1u) << "an empty last piece does not count";
    EXPECT_EQ(flags.addFlagsFromString(",,", ','), 2u);
    EXPECT_EQ(flags.addFlagsFromString("x -x", ','), 1u);
    EXPECT_TRUE(flags.contains("x -x"));
}

TEST(FlagList, canBeConstructedFromText)
{
    EXPECT_THAT(FlagList("b;-a;", ';'), ElementsAre(Pair("a", false), Pair("b", true)));
    EXPECT_THAT(FlagList("", ';'), IsEmpty());
}

TEST(FlagList, isOrderedByBytes)
{
    EXPECT_EQ(Trait::Text(FlagList("b \xc3\xa4 B a 1 ab", ' ')), " +1 +B +a +ab +b +\xc3\xa4");
}

TEST(FlagList, isEqualIfNamesAndStatesAreEqual)
{
    EXPECT_EQ(FlagList("a -b", ' '), FlagList("-b +a", ' '));
    EXPECT_NE(FlagList("a", ' '), FlagList("-a", ' '));
    EXPECT_NE(FlagList("a", ' '), FlagList("a b", ' '));
}

TEST(FlagList, intentionallyWritesABlankBeforeEachFlag)
{
    EXPECT_EQ(Trait::Text(FlagList("-b a", ' ')), " +a -b");
    EXPECT_EQ(Trait::Text(FlagList("+", ' ')), " +");
    EXPECT_EQ(Trait::Text(FlagList()), "");
}

TEST(FlagList, isReplacedByTheFlagsOfAText)
{
    const struct {
        const char* text;
        const char* written;
    } cases[] = {
        {"", ""},        {" ", ""},      {"x  -y", " +x -y"},  {" +a -b", " +a -b"},
        {"x -x", " -x"}, {"-y ", " -y"}, {"a,b\t", " +a,b\t"},
    };
    for (const auto& [text, written] : cases) {
        SCOPED_TRACE(text);
        FlagList flags("former -other", ' ');
        EXPECT_TRUE(Trait::setValueFromText(flags, text));
        EXPECT_EQ(Trait::Text(flags), written);
    }
}

TEST(FlagList, isPrintedOneFlagPerLine)
{
    testing::internal::CaptureStdout();
    FlagList("b -a +", ' ').speak();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), ": true\na: false\nb: true\n");
}

TEST(FlagList, isWrittenToAnInputOnlyIfItDiffers)
{
    const StrongPtr<VSlotContainer> container(new VSlotContainer);
    const TypedSlot<FlagList> slot(container.get(), "switches", FlagList("a", ' '), 0);
    const StrongPtr<ValuePool> pool(new ValuePool);
    slot.slot()->getLocalValue(pool);
    const Changes changes(slot.parameter());
    EXPECT_FALSE(slot(pool) <<= FlagList("+a", ' '));
    EXPECT_TRUE(slot(pool) <<= FlagList("-a", ' '));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(slot.value(pool), FlagList("-a", ' '));
    const StrongPtr<ValuePool> other(new ValuePool);
    EXPECT_EQ(slot.value(other), FlagList("a", ' ')) << "another pool does not see it";
}

// Inputs declared by the names of their flags

namespace {

class FlagInput : public testing::Test {
protected:
    const Warnings m_warnings;
    const StrongPtr<VSlotContainer> m_container{new VSlotContainer};
};

} // namespace

TEST_F(FlagInput, startsWithTheGivenFlags)
{
    const TypedSlot<bool[]> slot(m_container.get(), "switches", "a b c", 7);
    EXPECT_THAT(slot.initialValue(), ElementsAre(Pair("a", true), Pair("b", true), Pair("c", true)));
    EXPECT_EQ(slot.name(), "switches");
    ASSERT_TRUE(slot.slot());
    EXPECT_EQ(m_container->findSlot("switches"), slot.slot());
    EXPECT_EQ(slot.slot()->type(), typeid(FlagList));
    EXPECT_EQ(slot.slot()->expertLevel(), 7);
    EXPECT_EQ(slot.slot()->flags(), 0);
    EXPECT_EQ(slot.parameter()->DefaultValue()->Text(), " +a +b +c");
}

TEST_F(FlagInput, mayBeDescribed)
{
    const TypedSlot<bool[]> slot(m_container.get(), "switches", "a -b", describe("What is drawn."));
    ASSERT_TRUE(slot.slot() && slot.slot()->description());
    EXPECT_EQ(slot.slot()->description()->parts().sentence, "What is drawn.");
    EXPECT_EQ(slot.initialValue(), FlagList("a -b", ' '));
}

TEST_F(FlagInput, appliesItsFlagNamesInOrder)
{
    const TypedSlot<bool[]> twice(m_container.get(), "twice", "-a  a b -b", 0);
    EXPECT_EQ(twice.initialValue(), FlagList("a -b", ' '));
    const TypedSlot<bool[]> none(m_container.get(), "none", "", 0);
    EXPECT_THAT(none.initialValue(), IsEmpty());
}

TEST_F(FlagInput, declaresNothingUntilItIsAssignedTo)
{
    TypedSlot<bool[]> slot;
    EXPECT_FALSE(slot.slot());
    EXPECT_EQ(slot.name(), "");
    EXPECT_FALSE(slot.parameter());
    EXPECT_THAT(slot.value(nullptr), IsEmpty());
    EXPECT_THAT(m_warnings.all(), IsEmpty());

    slot = TypedSlot<bool[]>(m_container.get(), "switches", "a", 0);
    EXPECT_EQ(slot.slot(), m_container->findSlot("switches"));
    EXPECT_EQ(slot.name(), "switches");
    const TypedSlot<bool[]> copy(slot);
    EXPECT_EQ(copy.slot(), slot.slot());
    EXPECT_EQ(copy.initialValue(), slot.initialValue());
}

TEST_F(FlagInput, canBeAMemberOfItsObjectsClass)
{
    struct Painter : VSlotContainer {
        BoolInput switches{this, "switches", "axes -grid", 3};
        BoolInput others = TypedSlot<bool[]>(this, "others", "x", 0);
        BoolInput later;
    };
    const auto painter = Loam::makeStrong<Painter>();
    EXPECT_EQ(painter->inputs().size(), 2u);
    EXPECT_EQ(painter->switches.initialValue(), FlagList("axes -grid", ' '));
    EXPECT_EQ(painter->switches.slot()->expertLevel(), 3);
    EXPECT_EQ(painter->others.slot(), painter->findSlot("others"));
    EXPECT_FALSE(painter->later.slot());
    painter->later = painter->others;
    EXPECT_EQ(painter->later.slot(), painter->findSlot("others"));

    bool present = false;
    const StrongPtr<ValuePool> pool(new ValuePool);
    painter->switches.slot()->getLocalValue(pool)->setValueFromText("grid");
    EXPECT_TRUE(painter->switches.value(pool)("grid", present));
    EXPECT_FALSE(painter->switches.value(pool)("axes", present));
    EXPECT_FALSE(present) << "a text replaces all flags";
}

} // namespace VFlagListTest
