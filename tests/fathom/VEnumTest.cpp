#include <fathom/VEnum.hpp> // first: the header must be self-contained

#include "Recorders.hpp"

#include <fathom/Double.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VValueType.hpp>

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <type_traits>
#include <vector>

namespace VEnumTest {

using namespace Orla;

using Trait = VValueTrait<Enum>;
using Names = std::vector<std::string>;

static_assert(!std::is_convertible_v<StringList, VEnumSelection>);
static_assert(std::is_nothrow_move_constructible_v<Enum>);

namespace {

const VValueType<Enum> enumType;

const char* const letters[] = {"a", "b", "c"};
const char* const interpolations[] = {"linear", "cubic"};

Enum makeEnum(const char* const* names, unsigned count, const std::string& chosen)
{
    Enum made(names, count);
    EXPECT_TRUE(made.select(chosen));
    return made;
}

Enum cubic()
{
    return makeEnum(interpolations, 2, "cubic");
}

Enum lettersWith(const std::string& chosen)
{
    return makeEnum(letters, 3, chosen);
}

Names namesOf(const StringList& list)
{
    return {list.begin(), list.end()};
}

// An enum whose selected number is past the end of its names.
Enum withoutAChosenName()
{
    const auto selection = Loam::makeStrong<VEnumSelection>("a,b", ',');
    EXPECT_TRUE(selection->select("b"));
    selection->remove("a");
    return Enum(selection);
}

} // namespace

// The selection

TEST(VEnumSelection, startsAtTheFirstName)
{
    EXPECT_TRUE(VEnumSelection().empty());
    EXPECT_EQ(VEnumSelection().selectedNumber(), 0u);

    const VEnumSelection split("a;b;c", ';');
    EXPECT_EQ(namesOf(split), (Names{"a", "b", "c"}));
    EXPECT_EQ(split.selectedNumber(), 0u);

    VEnumSelection chosen("x,y", ',');
    EXPECT_TRUE(chosen.select("y"));
    EXPECT_EQ(VEnumSelection(static_cast<const StringList&>(chosen)).selectedNumber(), 0u);
    EXPECT_EQ(namesOf(VEnumSelection(StringList("x,y", ','))), (Names{"x", "y"}));
    EXPECT_EQ(VEnumSelection(chosen).selectedNumber(), 1u) << "a copy of a selection keeps its choice";
}

TEST(VEnumSelection, choosesByNumberWithinItsBounds)
{
    VEnumSelection selection("a,b,c", ',');
    EXPECT_TRUE(selection.select(2));
    EXPECT_FALSE(selection.select(3));
    EXPECT_FALSE(selection.select(5));
    EXPECT_EQ(selection.selectedNumber(), 2u);
    EXPECT_FALSE(VEnumSelection().select(0));
}

TEST(VEnumSelection, choosesTheFirstExactlyEqualName)
{
    VEnumSelection selection("a,b,B,b", ',');
    EXPECT_TRUE(selection.select("b"));
    EXPECT_EQ(selection.selectedNumber(), 1u);
    EXPECT_TRUE(selection.select("B"));
    EXPECT_EQ(selection.selectedNumber(), 2u);
    for (const char* name : {"", "A", "bb", "a "}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(selection.select(name));
        EXPECT_EQ(selection.selectedNumber(), 2u);
    }
}

TEST(VEnumSelection, hasEmptyNamesPastItsEnd)
{
    VEnumSelection selection("a,b", ',');
    EXPECT_EQ(selection[1], "b");
    EXPECT_EQ(selection[2], "");
    EXPECT_EQ(selection[~0u], "");
    EXPECT_EQ(&selection[2], &selection[3]);

    EXPECT_TRUE(selection.select(1));
    selection.remove("a");
    EXPECT_EQ(selection.selectedNumber(), 1u);
    EXPECT_EQ(selection.selectedName(), "");
    EXPECT_EQ(selection.toString(), "{b}");
}

TEST(VEnumSelection, isEqualIfNamesAndNumberAreEqual)
{
    VEnumSelection a("a,b", ',');
    VEnumSelection b(a);
    EXPECT_EQ(a, b);
    EXPECT_TRUE(b.select(1));
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a.select(1));
    EXPECT_EQ(a, b);
    b.append("c");
    EXPECT_FALSE(a == b);
}

TEST(VEnumSelection, isWrittenAsTheChoiceAndAllNamesInBraces)
{
    VEnumSelection selection("a,b,c", ',');
    EXPECT_EQ(selection.toString(), "a{a}{b}{c}");
    EXPECT_TRUE(selection.select("b"));
    EXPECT_EQ(selection.toString(), "b{a}{b}{c}");
    EXPECT_EQ(VEnumSelection().toString(), "");
    EXPECT_EQ(VEnumSelection("{x},", ',').toString(), "{x}{{x}}") << "nothing is escaped";
}

TEST(VEnumSelection, choosesAmongItsNamesIfTheTextHasNoBraces)
{
    VEnumSelection selection("a,b", ',');
    EXPECT_TRUE(selection.fromString("b"));
    EXPECT_EQ(selection.selectedNumber(), 1u);
    EXPECT_FALSE(selection.fromString("x"));
    EXPECT_FALSE(selection.fromString(""));
    EXPECT_FALSE(selection.fromString("b}"));
    EXPECT_EQ(selection.toString(), "b{a}{b}");
}

TEST(VEnumSelection, intentionallyReadsNamesWithTheirClosingBrace)
{
    const struct {
        const char* text;
        bool isAccepted;
        Names names;
        unsigned selected;
    } cases[] = {
        {"a{a}{b}", false, {"a}", "b}"}, 0},
        {"b}{a}{b}", true, {"a}", "b}"}, 1},
        {"b{a{b", true, {"a", "b"}, 1},
        {"{a}{b}", false, {"a}", "b}"}, 0},
        {"b{a{{b{b", true, {"a", "", "b", "b"}, 2},
        {"{{", true, {""}, 0},
        {"a{b}{", false, {"b}"}, 0},
        {"x{", false, {}, 0},
        {"{", false, {}, 0},
    };
    for (const auto& [text, isAccepted, names, selected] : cases) {
        SCOPED_TRACE(text);
        VEnumSelection selection("x,y,z", ',');
        EXPECT_TRUE(selection.select("z"));
        EXPECT_EQ(selection.fromString(text), isAccepted);
        EXPECT_EQ(namesOf(selection), names);
        EXPECT_EQ(selection.selectedNumber(), selected);
    }
}

TEST(VEnumSelection, canBeReadFromOneOfItsOwnNames)
{
    VEnumSelection selection("a rather long name of a case that holds a { inside,b", ',');
    EXPECT_FALSE(selection.fromString(selection[0]));
    EXPECT_EQ(namesOf(selection), Names{" inside"});
}

// Comparing names

TEST(IsEqualCaseIndependent, holdsIfOneTextBeginsWithTheOther)
{
    const struct {
        const char* a;
        const char* b;
        bool areEqual;
    } cases[] = {
        {"linear", "linear", true},
        {"Lin", "linear", true},
        {"LINEAR", "lin", true},
        {"lin", "cubic", false},
        {"", "cubic", true},
        {"", "", true},
        {"a@", "A`", false},
        {"a[", "A{", false},
        {"az", "AZ", true},
        {"linear ", "l", true},
        {"lib", "linear", false},
        {"\xc4", "\xe4", false},
        {"\xc4", "\xc4", true},
        {"\xff"
         "A",
         "\xff"
         "a",
         true},
    };
    for (const auto& [a, b, areEqual] : cases) {
        SCOPED_TRACE(std::string(a) + " and " + b);
        EXPECT_EQ(isEqualCaseIndependent(a, b), areEqual);
        EXPECT_EQ(isEqualCaseIndependent(b, a), areEqual);
    }
}

TEST(Enum, offersTheGivenNamesAndChoosesTheFirst)
{
    const Enum made(letters, 2);
    ASSERT_TRUE(made.selection());
    EXPECT_EQ(namesOf(*made.selection()), (Names{"a", "b"}));
    EXPECT_EQ(made.selection()->selectedNumber(), 0u);

    const char* names[] = {"x", nullptr, "", "y"}; // non-const pointers work too
    EXPECT_EQ(namesOf(*Enum(names, 4).selection()), (Names{"x", "", "y"}));
    ASSERT_TRUE(Enum(nullptr, 3).selection());
    EXPECT_TRUE(Enum(nullptr, 3).selection()->empty());
}

TEST(Enum, offersTheNamesInBraces)
{
    const Enum choice{"linear", "cubic", nullptr, "linear"};
    ASSERT_TRUE(choice.selection());
    EXPECT_EQ(*choice.selection(), VEnumSelection("linear,cubic,linear", ','));
    EXPECT_FALSE(Enum{}.selection());
    const StrongPtr<VSlotContainer> container(new VSlotContainer);
    const TypedSlot<Enum> slot(container.get(), "method", {"linear", "cubic"}, 0);
    EXPECT_EQ(slot.initialValue(), (Enum{"linear", "cubic"}));
}

TEST(Enum, comparesItsExactName)
{
    EXPECT_TRUE(cubic().Equal("cubic"));
    for (const char* name : {"", "Cubic", "cub", "cubic ", "linear"})
        EXPECT_FALSE(cubic().Equal(name)) << name;
    EXPECT_FALSE(cubic().Equal(std::string("cubic\0", 6)));
}

TEST(Enum, comparesTheBeginningOfItsNameIgnoringCase)
{
    for (const char* name : {"", "Cubic", "cub", "CUBICAL"})
        EXPECT_TRUE(cubic().iEqual(name)) << name;
    for (const char* name : {"linear", "cab"})
        EXPECT_FALSE(cubic().iEqual(name)) << name;
}

TEST(Enum, findsTheChosenCandidate)
{
    EXPECT_EQ(cubic().Case("linear", "cubic"), 1u);
    EXPECT_EQ(cubic().Case(nullptr, "cubic"), 1u);
    EXPECT_EQ(cubic().Case("Cubic"), Enum::None);
    EXPECT_EQ(cubic().Case("cubic", "cubic"), 0u);
    EXPECT_EQ(cubic().Case(nullptr), Enum::None);
    EXPECT_EQ(cubic().Case("0", "1", "2", "3", nullptr, "5", "6", "7", "8", "9", "cubic"), 10u);
    EXPECT_EQ(Enum::None, ~0u);
}

TEST(Enum, findsACandidateThatTheChosenNameBeginsWith)
{
    EXPECT_EQ(cubic().iCase("lin", "CUB"), 1u);
    EXPECT_EQ(cubic().iCase("", "cubic"), 0u) << "the empty candidate matches any choice";
    EXPECT_EQ(cubic().iCase("c", "cubic"), 0u) << "the first match wins";
    EXPECT_EQ(cubic().iCase(nullptr, "cubic", "c"), 1u);
    EXPECT_EQ(cubic().iCase("lin"), Enum::None);
    EXPECT_EQ(cubic().iCase("0", "1", "2", "3", nullptr, "5", "6", "7", "8", "9", "CUBIC"), 10u);
}

TEST(Enum, findsItsNameInAList)
{
    const char* names[] = {"linear", nullptr, "Cubic", "cubic", "cubic"};
    EXPECT_EQ(cubic()(names, 5), 3u);
    EXPECT_EQ(cubic()(names, 3), Enum::None);
    EXPECT_EQ(cubic()(static_cast<const char**>(nullptr), 3), Enum::None);

    EXPECT_EQ(cubic()(Loam::makeStrong<StringList>("linear,Cubic,cubic,cubic", ',')), 2u);
    EXPECT_EQ(cubic()(Loam::makeStrong<StringList>("linear", ',')), Enum::None);
    EXPECT_EQ(cubic()(StrongPtr<StringList>()), Enum::None);
}

TEST(Enum, hasAnEmptyNameIfItsNumberIsPastTheEnd)
{
    const Enum nameless = withoutAChosenName();
    EXPECT_TRUE(nameless.Equal(""));
    EXPECT_TRUE(nameless.iEqual("anything"));
    EXPECT_EQ(nameless.Case("b", ""), 1u);
    EXPECT_EQ(nameless.iCase("anything"), 0u);
    EXPECT_EQ(Trait::Text(nameless), "{b}");
}

TEST(Enum, hasNothingChosenIfItIsEmpty)
{
    Enum empty;
    EXPECT_FALSE(empty.selection());
    EXPECT_FALSE(empty.Equal(""));
    EXPECT_FALSE(empty.iEqual("")) << "not even the text that matches everything";
    EXPECT_EQ(empty.Case(""), Enum::None);
    EXPECT_EQ(empty.iCase(""), Enum::None);
    EXPECT_EQ(empty(letters, 3), Enum::None);
    EXPECT_EQ(empty(Loam::makeStrong<StringList>("a", ',')), Enum::None);
    EXPECT_FALSE(empty.select(0));
    EXPECT_FALSE(empty.select("a"));
    EXPECT_EQ(Trait::Text(empty), "");
    EXPECT_FALSE(Trait::setValueFromText(empty, "a{a}"));
    EXPECT_FALSE(empty.selection());
}

TEST(Enum, acceptsFurtherCasesEvenTwice)
{
    Enum made(letters, 1);
    EXPECT_TRUE(made.addCase("x"));
    EXPECT_TRUE(made.addCase(std::string("x")));
    EXPECT_FALSE(made.addCase(""));
    EXPECT_FALSE(made.addCase(std::string()));
    EXPECT_FALSE(made.addCase(static_cast<const char*>(nullptr)));
    EXPECT_EQ(Trait::Text(made), "a{a}{x}{x}");
}

TEST(Enum, startsWithTheFirstAddedCaseIfItIsEmpty)
{
    Enum made;
    EXPECT_FALSE(made.addCase(""));
    EXPECT_FALSE(made.selection());
    EXPECT_TRUE(made.addCase("x"));
    EXPECT_TRUE(made.addCase("y"));
    EXPECT_EQ(Trait::Text(made), "x{x}{y}");
}

TEST(Enum, sharesNamesAndChoiceWithItsCopies)
{
    Enum made(letters, 3);
    const Enum copy(made);
    EXPECT_TRUE(made.select("b"));
    EXPECT_TRUE(made.addCase("d"));
    EXPECT_EQ(Trait::Text(copy), "b{a}{b}{c}{d}");
    EXPECT_EQ(made.selection(), copy.selection());
    EXPECT_TRUE(Trait::setValueFromText(made, "c"));
    EXPECT_TRUE(copy.Equal("c"));
}

TEST(Enum, isEqualIfNamesAndChoiceAreEqual)
{
    EXPECT_EQ(Enum(), Enum());
    EXPECT_NE(Enum(), Enum(nullptr, 0)) << "an empty enum differs from one without names";
    EXPECT_NE(Enum(nullptr, 0), Enum());
    EXPECT_EQ(lettersWith("b"), lettersWith("b"));
    EXPECT_NE(lettersWith("b"), lettersWith("c"));
    EXPECT_NE(Enum(letters, 2), Enum(letters, 3));
    EXPECT_NE(Enum(letters, 2), Enum(interpolations, 2));
    const char* const reversed[] = {"b", "a"};
    EXPECT_NE(lettersWith("a"), makeEnum(reversed, 2, "a"));
}

// The text

TEST(Enum, isWrittenAsTheChoiceAndAllNames)
{
    EXPECT_EQ(Trait::Text(lettersWith("a")), "a{a}{b}{c}");
    EXPECT_EQ(Trait::Text(lettersWith("b")), "b{a}{b}{c}");
}

TEST(Enum, readsAChoiceButNeverNames)
{
    const struct {
        const char* text;
        bool isAccepted;
        const char* written;
    } cases[] = {
        {"c{whatever}", true, "c{a}{b}{c}"}, {"c", true, "c{a}{b}{c}"},        {"a{a}{b}{c}", true, "a{a}{b}{c}"},
        {"c{", true, "c{a}{b}{c}"},          {"x{x}{y}", false, "b{a}{b}{c}"}, {"C", false, "b{a}{b}{c}"},
        {"c ", false, "b{a}{b}{c}"},         {"{c}", false, "b{a}{b}{c}"},     {"", false, "b{a}{b}{c}"},
    };
    for (const auto& [text, isAccepted, written] : cases) {
        SCOPED_TRACE(text);
        Enum made = lettersWith("b");
        EXPECT_EQ(Trait::setValueFromText(made, text), isAccepted);
        EXPECT_EQ(Trait::Text(made), written);
    }
}

TEST(Enum, readsBackWhatItWroteIfTheNamesAreTheSame)
{
    for (const char* name : letters) {
        Enum read(letters, 3);
        EXPECT_TRUE(Trait::setValueFromText(read, Trait::Text(lettersWith(name))));
        EXPECT_EQ(read, lettersWith(name));
    }
}

// As a value and an input

TEST(EnumValue, isCopiedIndependently)
{
    const VValue<Enum> value(lettersWith("b"));
    const StrongPtr<VValueBase> copy = value.copy();
    EXPECT_FALSE(copy->isDifferentFrom(Loam::makeStrong<VValue<Enum>>(lettersWith("b"))));
    EXPECT_TRUE(copy->setValueFromText("c"));
    EXPECT_EQ(value.Text(), "b{a}{b}{c}");
    EXPECT_EQ(copy->Text(), "c{a}{b}{c}");
    EXPECT_TRUE(copy->isDifferentFrom(Loam::makeStrong<VValue<Enum>>(lettersWith("b"))));
    EXPECT_EQ(VValue<Enum>().copy()->Text(), "");
}

TEST(EnumValue, sharesNoChoiceWithWhatItIsGiven)
{
    Enum given = lettersWith("b");
    const StrongPtr<VValue<Enum>> value(new VValue<Enum>(given));
    EXPECT_TRUE(given.select("a"));
    EXPECT_EQ(value->Text(), "b{a}{b}{c}");
    EXPECT_TRUE(value->setValue(given));
    EXPECT_TRUE(given.select("c"));
    EXPECT_EQ(value->Text(), "a{a}{b}{c}");
    const StrongPtr<VValue<Enum>> taker(new VValue<Enum>);
    EXPECT_TRUE(taker->getValueFrom(value));
    EXPECT_TRUE(taker->setValueFromText("c"));
    EXPECT_EQ(value->Text(), "a{a}{b}{c}");
}

TEST(EnumValue, isEmptyIfItIsCreatedFromText)
{
    bool ok = true;
    const StrongPtr<VValueBase> value = VValueCreator::createValue("Enum", "a{a}{b}", ok);
    ASSERT_TRUE(value);
    EXPECT_FALSE(ok);
    EXPECT_EQ(value->Text(), "");
    EXPECT_EQ(value->getType(), typeid(Enum));
}

namespace {

class EnumInput : public testing::Test {
protected:
    std::string textIn(const StrongPtr<ValuePool>& pool) const { return Trait::Text(m_rule.value(pool)); }

    const StrongPtr<VSlotContainer> m_container{new VSlotContainer};
    const TypedSlot<Enum> m_rule{m_container.get(), "rule", lettersWith("b"), 0};
    const StrongPtr<ValuePool> m_first{new ValuePool("first")};
    const StrongPtr<ValuePool> m_second{new ValuePool("second")};
};

} // namespace

TEST_F(EnumInput, choosesForEachPoolSeparately)
{
    const StrongPtr<VValueBase> first = m_rule.slot()->getLocalValue(m_first);
    m_rule.slot()->getLocalValue(m_second);
    EXPECT_TRUE(first->setValueFromText("c"));
    EXPECT_EQ(textIn(m_first), "c{a}{b}{c}");
    EXPECT_EQ(textIn(m_second), "b{a}{b}{c}");
    EXPECT_EQ(m_rule.parameter()->DefaultValue()->Text(), "b{a}{b}{c}");
    EXPECT_EQ(m_rule.initialValue(), lettersWith("b"));
}

TEST_F(EnumInput, takesItsInitialChoiceFromTextAmongTheNamesOffered)
{
    m_rule.slot()->getLocalValue(m_first);
    EXPECT_TRUE(m_rule.slot()->setInitialText("c"));
    EXPECT_FALSE(m_rule.slot()->setInitialText("magnitude"));
    EXPECT_EQ(m_rule.parameter()->DefaultValue()->Text(), "c{a}{b}{c}");
    m_rule.slot()->getLocalValue(m_second);
    EXPECT_EQ(textIn(m_second), "c{a}{b}{c}");
    EXPECT_EQ(textIn(m_first), "b{a}{b}{c}") << "an existing variable keeps its choice";
}

TEST_F(EnumInput, isNotChangedThroughTheValueOfAPoolWithoutAVariable)
{
    m_rule.value(m_first).select("a");
    EXPECT_EQ(textIn(m_first), "b{a}{b}{c}");
    EXPECT_EQ(m_rule.parameter()->DefaultValue()->Text(), "b{a}{b}{c}");
}

TEST_F(EnumInput, sharesNoChoiceWithWhatItIsGivenOrReturns)
{
    Enum given = lettersWith("a");
    const TypedSlot<Enum> input(m_container.get(), "input", given, 0);
    EXPECT_TRUE(given.select("c"));
    EXPECT_EQ(input.value(m_first), lettersWith("a"));
    EXPECT_EQ(input.parameter()->DefaultValue()->Text(), "a{a}{b}{c}");

    EXPECT_TRUE(input.set(m_first, given));
    EXPECT_TRUE(given.select("b"));
    Enum returned = input.value(m_first);
    EXPECT_EQ(returned, lettersWith("c"));
    EXPECT_TRUE(returned.select("a"));
    EXPECT_TRUE(returned.addCase("d"));
    EXPECT_EQ(input.value(m_first), lettersWith("c"));

    EXPECT_TRUE(input.slot()->set(m_first, given));
    EXPECT_TRUE(given.select("c"));
    EXPECT_TRUE(input.slot()->get<Enum>(m_first)->select("a"));
    EXPECT_EQ(input.value(m_first), lettersWith("b"));

    EXPECT_TRUE(input(m_first) <<= given);
    EXPECT_TRUE(given.select("a"));
    EXPECT_EQ(input.value(m_first), lettersWith("c"));
}

TEST_F(EnumInput, sharesNoChoiceWithAnOutputThatItReads)
{
    const VOutput<Enum> output(m_container.get(), "output", lettersWith("a"));
    Enum written = lettersWith("b");
    EXPECT_TRUE(output(m_first) << written);
    EXPECT_TRUE(written.select("c"));
    EXPECT_TRUE(output.value(m_first).select("c"));
    EXPECT_EQ(output.value(m_first), lettersWith("b"));
    EXPECT_TRUE(output.value(m_second).select("c")) << "the initial value";
    EXPECT_EQ(output.value(m_second), lettersWith("a"));
}

TEST_F(EnumInput, isWrittenOnlyIfTheChoiceDiffers)
{
    m_rule.slot()->getLocalValue(m_first);
    const Changes changes(m_rule.parameter());
    EXPECT_FALSE(m_rule(m_first) <<= lettersWith("b"));
    EXPECT_TRUE(m_rule(m_first) <<= lettersWith("c"));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(textIn(m_first), "c{a}{b}{c}");
}

TEST_F(EnumInput, existsButOffersNothingIfItIsCreatedFromText)
{
    const StrongPtr<TypedSlotCreator> creator = TypedSlotCreator::find(typeid(Enum));
    ASSERT_TRUE(creator);
    bool ok = true;
    const StrongPtr<VSlot> slot = creator->newSlot(m_container.get(), "added", "a{a}{b}", ok, nullptr, 0);
    ASSERT_TRUE(slot);
    EXPECT_FALSE(ok);
    EXPECT_EQ(slot->type(), typeid(Enum));
    EXPECT_EQ(slot->parameter()->DefaultValue()->Text(), "");
    EXPECT_FALSE(slot->setInitialText("a"));
}

} // namespace VEnumTest
