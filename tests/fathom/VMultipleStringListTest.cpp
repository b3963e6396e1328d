#include <fathom/VMultipleStringList.hpp> // first: the header must be self-contained

#include "SelectionInput.hpp"

#include <fathom/VOutput.hpp>
#include <fathom/VValueType.hpp>

#include <trellis/VScheduler.hpp>

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <vector>

namespace VMultipleStringListTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

using Selection = StrongPtr<MultipleStringSelection, StringList>;
using Trait = VValueTrait<Selection>;
using Value = VValue<Selection>;

static_assert(std::is_convertible_v<Selection, StrongPtr<StringList>>);
static_assert(!std::is_convertible_v<std::string, MultipleStringSelection>);

namespace {

const VValueType<Selection> multipleSelectionType;

Selection make(const std::string& selected, const std::string& choices)
{
    return Loam::makeStrong<MultipleStringSelection>(selected, choices, ',');
}

Selection heldBy(const StrongPtr<VValueBase>& value)
{
    Selection held;
    const StrongPtr<VTypedValueBase<Selection>> typed(value);
    EXPECT_TRUE(typed && typed->getValue(held));
    return held;
}

} // namespace

// The selection

TEST(MultipleStringSelection, canBeConstructedInThreeWays)
{
    const MultipleStringSelection empty;
    EXPECT_THAT(empty, IsEmpty());
    ASSERT_TRUE(empty.selection);
    EXPECT_THAT(*empty.selection, IsEmpty());

    const MultipleStringSelection one("only");
    EXPECT_THAT(one, ElementsAre("only"));
    EXPECT_THAT(*one.selection, ElementsAre("only"));

    const MultipleStringSelection split("c;x", "a;;c", ';');
    EXPECT_THAT(split, ElementsAre("a", "", "c"));
    EXPECT_THAT(*split.selection, ElementsAre("c", "x")) << "the selection is not checked";
}

TEST(MultipleStringSelection, hasASeparateSelectionInEachCopy)
{
    const Selection original = make("a", "a,b");
    MultipleStringSelection copy(*original);
    EXPECT_TRUE(copy.add("b"));
    EXPECT_THAT(*original->selection, ElementsAre("a"));
    EXPECT_THAT(*copy.selection, ElementsAre("a", "b"));

    MultipleStringSelection assigned("former");
    const StrongPtr<StringList> list = assigned.selection;
    assigned = copy;
    EXPECT_THAT(assigned, ElementsAre("a", "b"));
    EXPECT_THAT(*assigned.selection, ElementsAre("a", "b"));
    EXPECT_EQ(assigned.selection, list);
    copy.removeAll();
    EXPECT_THAT(*assigned.selection, ElementsAre("a", "b"));
}

TEST(MultipleStringSelection, selectsAChoiceOnce)
{
    const Selection selection = make("", "a,b");
    EXPECT_TRUE(selection->add("b"));
    EXPECT_TRUE(selection->add("a"));
    EXPECT_TRUE(selection->add("b"));
    EXPECT_THAT(*selection->selection, ElementsAre("b", "a"));
    EXPECT_FALSE(selection->add("x"));
    EXPECT_FALSE(selection->add(""));
    EXPECT_THAT(*selection->selection, ElementsAre("b", "a"));
}

TEST(MultipleStringSelection, intentionallyDoesNothingInTryAdd)
{
    const Selection selection = make("a", "a,b");
    for (const char* string : {"a", "b", "x"})
        EXPECT_FALSE(selection->tryAdd(string)) << string;
    EXPECT_THAT(*selection->selection, ElementsAre("a"));
}

TEST(MultipleStringSelection, selectsAllChoicesOrNone)
{
    const Selection selection = make("c,x", "a,b,c");
    selection->addAll();
    EXPECT_THAT(*selection->selection, ElementsAre("a", "b", "c"));
    selection->removeAll();
    EXPECT_THAT(*selection->selection, IsEmpty());
    EXPECT_THAT(*selection, ElementsAre("a", "b", "c"));
}

TEST(MultipleStringSelection, countsOnlyChoicesAsSelected)
{
    const Selection selection = make("a,x", "a,b");
    EXPECT_TRUE(selection->isInSelection("a"));
    EXPECT_FALSE(selection->isInSelection("b"));
    EXPECT_FALSE(selection->isInSelection("x"));
}

TEST(MultipleStringSelection, addsTheFirstChoiceEachTime)
{
    const Selection selection = make("b", "a,b");
    EXPECT_TRUE(selection->addFirst());
    EXPECT_TRUE(selection->addFirst());
    EXPECT_THAT(*selection->selection, ElementsAre("b", "a", "a"));
    EXPECT_FALSE(MultipleStringSelection().addFirst());
}

TEST(MultipleStringSelection, removesEveryOccurrenceFromItsSelection)
{
    const Selection selection = make("a,b,a,x", "a,b");
    EXPECT_TRUE(selection->removeFromSelection("a"));
    EXPECT_TRUE(selection->removeFromSelection("x"));
    EXPECT_TRUE(selection->removeFromSelection("unknown"));
    EXPECT_THAT(*selection->selection, ElementsAre("b"));
    EXPECT_THAT(*selection, ElementsAre("a", "b"));
    EXPECT_TRUE(selection->removeFromSelection((*selection->selection)[0])) << "the selection's own string";
    EXPECT_THAT(*selection->selection, IsEmpty());
}

TEST(MultipleStringSelection, canBeInverted)
{
    const Selection two = make("a", "a,b");
    two->invertAll();
    EXPECT_THAT(*two->selection, ElementsAre("b"));
    two->invertAll();
    EXPECT_THAT(*two->selection, ElementsAre("a"));

    const Selection more = make("b,x,b", "a,b,c");
    more->invertAll();
    EXPECT_THAT(*more->selection, ElementsAre("x", "a", "c")) << "a string that is not a choice stays";
}

TEST(MultipleStringSelection, togglesAChoice)
{
    const Selection selection = make("b,a,b", "a,b,c");
    EXPECT_TRUE(selection->addOrRemove("c"));
    EXPECT_THAT(*selection->selection, ElementsAre("b", "a", "b", "c"));
    EXPECT_TRUE(selection->addOrRemove("b"));
    EXPECT_THAT(*selection->selection, ElementsAre("a", "c"));
    EXPECT_TRUE(selection->addOrRemove((*selection->selection)[0]));
    EXPECT_FALSE(selection->addOrRemove("x"));
    EXPECT_THAT(*selection->selection, ElementsAre("c"));
}

TEST(MultipleStringSelection, doesNotToggleAStringThatIsNotAChoice)
{
    const Selection selection = make("x", "a");
    EXPECT_FALSE(selection->addOrRemove("x"));
    EXPECT_THAT(*selection->selection, ElementsAre("x"));
}

TEST(MultipleStringSelection, isIntentionallyEqualRegardlessOfTheSelection)
{
    EXPECT_TRUE(*make("a", "a,b") == *make("b", "a,b"));
    EXPECT_FALSE(*make("a", "a,b") == *make("a", "b,a"));
    EXPECT_FALSE(*make("a", "a,b") == *make("a", "a"));

    using Operations = VValueOperations<Selection>;
    EXPECT_FALSE(Operations::areDifferent(make("a", "a,b"), make("b", "a,b")));
    EXPECT_TRUE(Operations::areDifferent(make("a", "a,b"), make("a", "a")));
    EXPECT_TRUE(Operations::areDifferent(make("", ""), nullptr));
    EXPECT_TRUE(Operations::areDifferent(nullptr, make("", "")));
    EXPECT_FALSE(Operations::areDifferent(nullptr, nullptr));
}

TEST(MultipleStringSelection, hasPointersThatAreEqualIfTheyShareIt)
{
    const Selection one = make("a", "a,b");
    const Selection twin = make("a", "a,b");
    const Selection same = one;
    EXPECT_FALSE(one == twin);
    EXPECT_TRUE(one == same);
    EXPECT_EQ(std::hash<Selection>{}(one), std::hash<Selection>{}(same));
    EXPECT_EQ((std::unordered_set<Selection>{one, twin, same}).size(), 2u);
}

// The text

TEST(MultipleStringSelection, isWrittenAsTheSelectionAndTheChoices)
{
    EXPECT_EQ(Trait::Text(make("c,a", "a,b,c")), "{c}{a}@{a}{b}{c}");
    EXPECT_EQ(Trait::Text(make("", "a,b")), "@{a}{b}");
    EXPECT_EQ(Trait::Text(make("x", "")), "{x}@");
    EXPECT_EQ(Trait::Text(make("", "")), "@");
    EXPECT_EQ(Trait::Text(nullptr), "");
}

TEST(MultipleStringSelection, readsBackWhatItWrote)
{
    for (const Selection& written :
         {make("c,a", "a,b,c"), make("", "a,b"), make("x", ""), make("", ""), make("a,a", "a,a"), make(",", ",a"),
          make("a}b}", "a}b},}"), make("of two words", "of two words,and more")}) {
        const std::string text = Trait::Text(written);
        SCOPED_TRACE(text);
        Selection read = make("former", "former,others");
        EXPECT_TRUE(Trait::setValueFromText(read, text));
        EXPECT_EQ(Trait::Text(read), text);
        EXPECT_EQ(*read->selection, *written->selection);
        EXPECT_TRUE(*read == *written);
    }
}

TEST(MultipleStringSelection, readsHandwrittenText)
{
    const struct {
        const char* text;
        bool isAccepted;
        const char* written;
    } cases[] = {
        {"{b}", true, "{b}@{a}{b}"}, // without "@" the choices are unchanged
        {"{b}{a}", true, "{b}{a}@{a}{b}"},
        {" {b} {a} ", true, "{b}{a}@{a}{b}"},
        {"{b", true, "{b}@{a}{b}"},
        {"{x}", true, "{x}@{a}{b}"}, // not checked
        {"{}", true, "{}@{a}{b}"},
        {"@", true, "@"},
        {"{b}@", true, "{b}@"},
        {"@{c}", true, "@{c}"},
        {"{b}@{b}@{c}", true, "{b}@{b}{c}"}, // the first "@" is the separator
        {"", false, "{a}@{a}{b}"},
        {"b", false, "{a}@{a}{b}"},
        {"{", false, "{a}@{a}{b}"},
        {"}", false, "{a}@{a}{b}"},
    };
    for (const auto& [text, isAccepted, written] : cases) {
        SCOPED_TRACE(text);
        Selection selection = make("a", "a,b");
        EXPECT_EQ(Trait::setValueFromText(selection, text), isAccepted);
        EXPECT_EQ(Trait::Text(selection), written);
    }
}

TEST(MultipleStringSelection, isReadInPlaceForAllItsOwners)
{
    Selection selection = make("a", "a,b");
    const StrongPtr<StringList> list = selection->selection;
    const Selection other = selection;
    EXPECT_TRUE(Trait::setValueFromText(selection, "{b}@{b}"));
    EXPECT_EQ(other.get(), selection.get());
    EXPECT_EQ(other->selection, list);
    EXPECT_EQ(Trait::Text(other), "{b}@{b}");
}

TEST(MultipleStringSelection, canBeReadFromOneOfItsOwnStrings)
{
    const std::string text = "{one string that is longer than a short one}@{another string of that length}";
    Selection selection = make("a", text + ",b");
    EXPECT_TRUE(Trait::setValueFromText(selection, (*selection)[0]));
    EXPECT_EQ(Trait::Text(selection), text);
}

TEST(MultipleStringSelection, isNotCreatedIfThePointerIsNull)
{
    Selection none;
    EXPECT_FALSE(Trait::setValueFromText(none, "{a}@{a}"));
    EXPECT_FALSE(none.get());
}

// As a value

TEST(MultipleStringSelectionValue, isRegisteredButNotCreatedFromText)
{
    bool ok = true;
    const StrongPtr<VValueBase> value = VValueCreator::createValue(Loam::Typename(typeid(Selection)), "{a}@{a}", ok);
    ASSERT_TRUE(value);
    EXPECT_FALSE(ok);
    EXPECT_EQ(value->getType(), typeid(Selection));
    EXPECT_EQ(value->Text(), "");
}

TEST(MultipleStringSelectionValue, isCopiedIndependentlyWithTheSelection)
{
    const StrongPtr<VValueBase> value(new Value(make("b", "a,b")));
    const StrongPtr<VValueBase> copy = value->copy();
    EXPECT_EQ(copy->Text(), "{b}@{a}{b}");
    EXPECT_TRUE(heldBy(copy)->add("a"));
    EXPECT_EQ(copy->Text(), "{b}{a}@{a}{b}");
    EXPECT_EQ(value->Text(), "{b}@{a}{b}");
    EXPECT_FALSE(heldBy(Value().copy()).get());
}

TEST(MultipleStringSelectionValue, takesASelectionEvenFromAValueThatIsNotDifferent)
{
    const StrongPtr<Value> one(new Value(make("a", "a,b")));
    const StrongPtr<Value> other(new Value(make("b", "a,b")));
    EXPECT_FALSE(one->isDifferentFrom(other));
    EXPECT_TRUE(one->getValueFrom(other));
    EXPECT_EQ(one->Text(), "{b}@{a}{b}");
    EXPECT_TRUE(one->setValue(make("", "a,b")));
    EXPECT_EQ(one->Text(), "@{a}{b}");
}

TEST(MultipleStringSelectionValue, isDifferentIfTheChoicesDiffer)
{
    const Value value(make("a", "a,b"));
    EXPECT_TRUE(value.isDifferentFrom(Loam::makeStrong<Value>(make("a", "a"))));
    EXPECT_TRUE(value.isDifferentFrom(Loam::makeStrong<Value>()));
    EXPECT_FALSE(Value().isDifferentFrom(Loam::makeStrong<Value>()));
}

// As an input

namespace {

class Picker final : public VObject {
public:
    explicit Picker(const std::string& name) : VObject{name, 0, nullptr} { enableRequestProcessing(); }

    bool update(VRequest& request, double) override
    {
        seen.push_back(Trait::Text(field.value(request.valuePool())));
        return true;
    }

    TypedSlot<Selection> field{this, "field", make("b", "a,b,c"), 0};
    std::vector<std::string> seen;
};

using MultipleStringSelectionInput = SelectionInput<Picker>;

} // namespace

TEST_F(MultipleStringSelectionInput, selectsForEachPoolSeparately)
{
    valueIn(m_second);
    EXPECT_TRUE(heldBy(valueIn(m_first))->add("c"));
    EXPECT_EQ(valueIn(m_first)->Text(), "{b}{c}@{a}{b}{c}");
    EXPECT_EQ(valueIn(m_second)->Text(), "{b}@{a}{b}{c}");
    EXPECT_EQ(initialText(), "{b}@{a}{b}{c}");
}

TEST_F(MultipleStringSelectionInput, takesItsInitialSelectionFromTextEvenIfTheChoicesAreEqual)
{
    valueIn(m_first);
    EXPECT_TRUE(slot().slot()->setInitialText("{c}{a}"));
    EXPECT_EQ(initialText(), "{c}{a}@{a}{b}{c}");
    EXPECT_FALSE(slot().slot()->setInitialText("c"));
    EXPECT_EQ(initialText(), "{c}{a}@{a}{b}{c}");
    EXPECT_EQ(valueIn(m_first)->Text(), "{b}@{a}{b}{c}") << "an existing variable keeps its selection";
    EXPECT_EQ(valueIn(m_second)->Text(), "{c}{a}@{a}{b}{c}");
}

TEST_F(MultipleStringSelectionInput, existsButHoldsNothingIfItIsCreatedFromText)
{
    const StrongPtr<TypedSlotCreator> creator = TypedSlotCreator::find(typeid(Selection));
    ASSERT_TRUE(creator);
    bool ok = true;
    const StrongPtr<VSlot> added = creator->newSlot(m_object.get(), "added", "{a}@{a}", ok, nullptr, 0);
    ASSERT_TRUE(added);
    EXPECT_FALSE(ok);
    EXPECT_FALSE(heldBy(added->parameter()->DefaultValue()).get());
    EXPECT_FALSE(added->setInitialText("{a}@{a}"));
}

TEST_F(MultipleStringSelectionInput, isIntentionallyNotWrittenIfOnlyTheSelectionDiffers)
{
    valueIn(m_first);
    EXPECT_FALSE(slot()(m_first) <<= make("c", "a,b,c"));
    EXPECT_EQ(valueIn(m_first)->Text(), "{b}@{a}{b}{c}");
    EXPECT_EQ(m_changes.count(), 0);
    EXPECT_TRUE(slot()(m_first) <<= make("c", "a,b,c,d"));
    EXPECT_EQ(valueIn(m_first)->Text(), "{c}@{a}{b}{c}{d}");
    EXPECT_EQ(m_changes.count(), 1);
}

TEST_F(MultipleStringSelectionInput, runsItsReadersWhenASelectionIsAnnounced)
{
    VScheduler::schedule(m_object, 0, m_first);
    VScheduler::run(m_first);
    const StrongPtr<VValueBase> value = valueIn(m_first);
    EXPECT_TRUE(heldBy(value)->addOrRemove("b"));
    EXPECT_TRUE(heldBy(value)->addOrRemove("c"));
    VScheduler::run(m_first);
    EXPECT_THAT(m_object->seen, ElementsAre("{b}@{a}{b}{c}")) << "not announced yet";
    slot().parameter()->notifyValueChange(value, m_first);
    EXPECT_EQ(m_changes.count(), 1);
    VScheduler::run(m_first);
    EXPECT_THAT(m_object->seen, ElementsAre("{b}@{a}{b}{c}", "{c}@{a}{b}{c}"));
}

} // namespace VMultipleStringListTest
