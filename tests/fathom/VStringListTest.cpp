#include <fathom/VStringList.hpp> // first: the header must be self-contained

#include "SelectionInput.hpp"

#include <fathom/VOutput.hpp>

#include <trellis/VScheduler.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace VStringListTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

using Selection = StrongPtr<StringSelection, StringList>;
using Trait = VValueTrait<Selection>;
using Value = VValue<Selection>;

static_assert(!std::is_convertible_v<std::string, StringSelection>);

namespace {

Selection make(const std::string& names, const std::string& chosen)
{
    return Loam::makeStrong<StringSelection>(',', names, chosen);
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

TEST(StringSelection, canBeConstructedInFourWays)
{
    EXPECT_THAT(StringSelection(), IsEmpty());
    EXPECT_EQ(StringSelection().selection, "");

    const StringSelection one("only");
    EXPECT_THAT(one, ElementsAre("only"));
    EXPECT_EQ(one.selection, "only");

    const StringSelection split(';', "a;;b;", "x");
    EXPECT_THAT(split, ElementsAre("a", "", "b"));
    EXPECT_EQ(split.selection, "x") << "the choice is not checked";

    const auto list = Loam::makeStrong<StringList>("a,b", ',');
    const StringSelection listed("b", list);
    list->append("c");
    EXPECT_THAT(listed, ElementsAre("a", "b"));
    EXPECT_EQ(listed.selection, "b");
    EXPECT_THAT(StringSelection("b", nullptr), IsEmpty());
}

TEST(StringSelection, choosesOnlyEntriesOfItsList)
{
    const Selection selection = make("a,b", "a");
    EXPECT_TRUE(selection->select("b"));
    EXPECT_EQ(selection->selection, "b");
    for (const char* string : {"", "B", "b "}) {
        EXPECT_FALSE(selection->select(string)) << string;
        EXPECT_EQ(selection->selection, "b");
    }
}

TEST(StringSelection, fallsBackToTheFirstEntryIfTheWantedOneIsMissing)
{
    const Selection selection = make("a,b", "x");
    EXPECT_TRUE(selection->tryselect("b"));
    EXPECT_EQ(selection->selection, "b");
    EXPECT_TRUE(selection->tryselect("unknown"));
    EXPECT_EQ(selection->selection, "a");
    EXPECT_FALSE(make("", "x")->tryselect("x"));
    EXPECT_FALSE(StringSelection().tryselect(""));
}

TEST(StringSelection, choosesTheFirstEntryIfThereIsOne)
{
    const Selection selection = make("a,b", "b");
    EXPECT_TRUE(selection->selectFirst());
    EXPECT_EQ(selection->selection, "a");
    const Selection empty = make("", "x");
    EXPECT_FALSE(empty->selectFirst());
    EXPECT_EQ(empty->selection, "x");
}

TEST(StringSelection, isEqualIfListAndChoiceAreEqual)
{
    EXPECT_TRUE(*make("a,b", "a") == *make("a,b", "a"));
    EXPECT_FALSE(*make("a,b", "a") == *make("a,b", "b"));
    EXPECT_FALSE(*make("a,b", "a") == *make("b,a", "a"));
    EXPECT_FALSE(*make("a,b", "a") == *make("a", "a"));
}

// The text

TEST(StringSelection, isWrittenAsTheChoiceFollowedByTheList)
{
    EXPECT_EQ(Trait::Text(make("a,b", "b")), "b@a|b|");
    EXPECT_EQ(Trait::Text(make("", "")), "@");
    EXPECT_EQ(Trait::Text(make("a,,b", "")), "@a||b|");
    EXPECT_EQ(Trait::Text(nullptr), "");
}

TEST(StringSelection, takesItsListFromTextOnlyWhileItIsEmpty)
{
    const struct {
        const char* names;
        const char* text;
        bool isAccepted;
        const char* written;
    } cases[] = {
        {"", "b@a|b|", true, "b@a|b|"},
        {"", "x@a|b|", false, "@a|b|"},
        {"", "b@a||b", true, "b@a|b|"},
        {"", "@@b@@a|b|@c|@", true, "b@a|b|"},
        {"", "b", false, "@"},
        {"", "", false, "@"},
        {"a,b,c", "c@x|y|", true, "c@a|b|c|"},
        {"a,b,c", "x@x|y|", false, "@a|b|c|"},
        {"a,b,c", "b", true, "b@a|b|c|"},
        {"a,b,c", "b@", true, "b@a|b|c|"},
        {"a,b,c", "", false, "@a|b|c|"},
        {"a,,c", "", true, "@a||c|"}, // the empty text chooses an empty entry
        {"a,@,c", "@", true, "@@a|@|c|"},
    };
    for (const auto& [names, text, isAccepted, written] : cases) {
        SCOPED_TRACE(std::string(names) + " reads " + text);
        Selection selection = make(names, "");
        EXPECT_EQ(Trait::setValueFromText(selection, text), isAccepted);
        EXPECT_EQ(Trait::Text(selection), written);
    }
}

TEST(StringSelection, keepsItsChoiceIfATextNamesAMissingEntry)
{
    Selection selection = make("a,b", "b");
    for (const char* text : {"x", "x@a|", "", "@", "B"}) {
        EXPECT_FALSE(Trait::setValueFromText(selection, text)) << text;
        EXPECT_EQ(Trait::Text(selection), "b@a|b|");
    }
}

TEST(StringSelection, intentionallyReadsTheListAsTheChoiceIfNothingWasChosen)
{
    Selection selection = make("", "");
    EXPECT_FALSE(Trait::setValueFromText(selection, "@a|b|"));
    EXPECT_EQ(Trait::Text(selection), "@");

    Selection odd = Loam::makeStrong<StringSelection>(';', "a;a|b|", "");
    EXPECT_TRUE(Trait::setValueFromText(odd, "@a|b|"));
    EXPECT_EQ(odd->selection, "a|b|");
}

TEST(StringSelection, isNotCreatedIfThePointerIsNull)
{
    Selection none;
    EXPECT_FALSE(Trait::setValueFromText(none, "b@a|b|"));
    EXPECT_FALSE(none);
}

// As a value

TEST(StringSelectionValue, isRegisteredButNotCreatedFromText)
{
    bool ok = true;
    const StrongPtr<VValueBase> value = VValueCreator::createValue(Loam::Typename(typeid(Selection)), "b@a|b|", ok);
    ASSERT_TRUE(value);
    EXPECT_FALSE(ok);
    EXPECT_EQ(value->getType(), typeid(Selection));
    EXPECT_EQ(value->Text(), "");
    EXPECT_FALSE(heldBy(value));
}

TEST(StringSelectionValue, isCopiedIndependently)
{
    const StrongPtr<VValueBase> value(new Value(make("a,b", "b")));
    const StrongPtr<VValueBase> copy = value->copy();
    EXPECT_EQ(copy->Text(), "b@a|b|");
    EXPECT_TRUE(copy->setValueFromText("a"));
    EXPECT_EQ(copy->Text(), "a@a|b|");
    EXPECT_EQ(value->Text(), "b@a|b|");
    EXPECT_EQ(heldBy(Value().copy()), nullptr);
}

TEST(StringSelectionValue, sharesTheSelectionOnReadingAndWriting)
{
    const Selection selection = make("a,b", "b");
    const StrongPtr<Value> value(new Value);
    EXPECT_TRUE(value->setValue(selection));
    EXPECT_EQ(heldBy(value).get(), selection.get());

    const StrongPtr<Value> taker(new Value);
    EXPECT_TRUE(taker->getValueFrom(value));
    EXPECT_EQ(heldBy(taker).get(), selection.get());
}

TEST(StringSelectionValue, isDifferentIfItsContentDiffers)
{
    const Value value(make("a,b", "b"));
    EXPECT_FALSE(value.isDifferentFrom(Loam::makeStrong<Value>(make("a,b", "b"))));
    EXPECT_TRUE(value.isDifferentFrom(Loam::makeStrong<Value>(make("a,b", "a"))));
    EXPECT_TRUE(value.isDifferentFrom(Loam::makeStrong<Value>(make("a,b,c", "b"))));
    EXPECT_TRUE(value.isDifferentFrom(Loam::makeStrong<Value>()));
    EXPECT_TRUE(Value().isDifferentFrom(Loam::makeStrong<Value>(make("", ""))));
    EXPECT_FALSE(Value().isDifferentFrom(Loam::makeStrong<Value>()));
}

// As an input

namespace {

class Chooser final : public VObject {
public:
    explicit Chooser(const std::string& name) : VObject{name, 0, nullptr} { enableRequestProcessing(); }

    bool update(VRequest& request, double) override
    {
        seen.push_back(field.value(request.valuePool())->selection);
        return true;
    }

    TypedSlot<Selection> field{this, "field", make("a,b,c", "b"), nullptr, 0, true};
    std::vector<std::string> seen;
};

using StringSelectionInput = SelectionInput<Chooser>;

} // namespace

TEST_F(StringSelectionInput, choosesForEachPoolSeparately)
{
    valueIn(m_second);
    EXPECT_TRUE(heldBy(valueIn(m_first))->select("c"));
    EXPECT_EQ(valueIn(m_first)->Text(), "c@a|b|c|");
    EXPECT_EQ(valueIn(m_second)->Text(), "b@a|b|c|");
    EXPECT_EQ(initialText(), "b@a|b|c|");
    EXPECT_EQ(slot().initialValue()->selection, "b");
}

TEST_F(StringSelectionInput, takesItsInitialChoiceFromTextAmongTheEntriesOffered)
{
    valueIn(m_first);
    EXPECT_TRUE(slot().slot()->setInitialText("c@x|"));
    EXPECT_EQ(initialText(), "c@a|b|c|");
    EXPECT_FALSE(slot().slot()->setInitialText("x@x|"));
    EXPECT_EQ(initialText(), "c@a|b|c|");
    EXPECT_EQ(valueIn(m_first)->Text(), "b@a|b|c|") << "an existing variable keeps its choice";
    EXPECT_EQ(valueIn(m_second)->Text(), "c@a|b|c|");
    EXPECT_EQ(slot().initialValue()->selection, "b");
}

TEST_F(StringSelectionInput, isNotChangedThroughTheValueOfAPoolWithoutAVariable)
{
    slot().value(m_first)->selection = "a";
    EXPECT_EQ(slot().value(m_first)->selection, "b");
    EXPECT_EQ(initialText(), "b@a|b|c|");
}

TEST_F(StringSelectionInput, sharesNoChoiceWithWhatItIsGivenOrReturns)
{
    const Selection given = make("a,b,c", "a");
    const TypedSlot<Selection> input(m_object.get(), "input", given, nullptr, 0, true);
    given->selection = "c";
    EXPECT_EQ(input.value(m_first)->selection, "a");
    EXPECT_EQ(input.parameter()->DefaultValue()->Text(), "a@a|b|c|");

    EXPECT_TRUE(input.set(m_first, given));
    given->selection = "b";
    EXPECT_EQ(input.value(m_first)->selection, "c");
    input.value(m_first)->selection = "a";
    EXPECT_EQ(input.value(m_first)->selection, "c");

    EXPECT_TRUE(input.slot()->set(m_first, given));
    given->selection = "c";
    input.slot()->get<Selection>(m_first).value()->selection = "a";
    EXPECT_EQ(input.value(m_first)->selection, "b");

    EXPECT_TRUE(input(m_first) <<= given);
    given->selection = "a";
    EXPECT_EQ(input.value(m_first)->selection, "c");

    const VValue<Selection> value(given);
    given->selection = "b";
    EXPECT_EQ(value.Text(), "a@a|b|c|");
    const StrongPtr<VValueBase> global(new VValue<Selection>(make("a,b", "b")));
    EXPECT_TRUE(input.parameter()->setGlobalValue(global, ""));
    heldBy(global)->selection = "a";
    EXPECT_EQ(input.parameter()->DefaultValue()->Text(), "b@a|b|");
}

TEST_F(StringSelectionInput, sharesNoChoiceWithTheUpdateThatReadsIt)
{
    // Reads and writes through the frame of the running update.
    class Careless final : public VObject {
    public:
        Careless() : VObject{"careless", 0, nullptr} { enableRequestProcessing(); }

        bool update(VRequest& request, double) override
        {
            const StrongPtr<ValuePool>& pool = request.valuePool();
            field.value(pool)->selection = "a";
            seen = field.value(pool)->selection;
            const Selection written = make("x,y", "x");
            result(pool) << written;
            written->selection = "y";
            return true;
        }

        TypedSlot<Selection> field{this, "field", make("a,b", "b"), nullptr, 0, true};
        VOutput<Selection> result{this, "result", make("", "")};
        std::string seen;
    };
    const auto careless = Loam::makeStrong<Careless>();
    VScheduler::schedule(careless, 0, m_first);
    VScheduler::run(m_first);
    EXPECT_EQ(careless->seen, "b");
    EXPECT_EQ(careless->result.value(m_first)->selection, "x");
}

TEST_F(StringSelectionInput, existsButHoldsNothingIfItIsCreatedFromText)
{
    const StrongPtr<TypedSlotCreator> creator = TypedSlotCreator::find(typeid(Selection));
    ASSERT_TRUE(creator);
    bool ok = true;
    const StrongPtr<VSlot> added = creator->newSlot(m_object.get(), "added", "b@a|b|", ok, nullptr, 3);
    ASSERT_TRUE(added);
    EXPECT_FALSE(ok);
    EXPECT_EQ(added->expertLevel(), 3);
    EXPECT_EQ(added->type(), typeid(Selection));
    EXPECT_FALSE(heldBy(added->parameter()->DefaultValue()));
    EXPECT_FALSE(heldBy(added->getLocalValue(m_first)));
    EXPECT_FALSE(added->setInitialText("b@a|b|"));
}

TEST_F(StringSelectionInput, isWrittenOnlyIfTheContentDiffers)
{
    valueIn(m_first);
    EXPECT_FALSE(slot()(m_first) <<= make("a,b,c", "b"));
    EXPECT_EQ(m_changes.count(), 0);
    EXPECT_TRUE(slot()(m_first) <<= make("a,b,c", "c"));
    EXPECT_EQ(m_changes.count(), 1);
    EXPECT_EQ(valueIn(m_first)->Text(), "c@a|b|c|");
}

// Offering a new list

TEST_F(StringSelectionInput, keepsAChoiceThatTheNewListContains)
{
    const Selection fresh = make("b,d", "d");
    EXPECT_EQ(updateSelection(slot(), m_first, fresh), "b");
    EXPECT_EQ(fresh->selection, "b");
    EXPECT_EQ(heldBy(valueIn(m_first)).get(), fresh.get()) << "the value holds the new selection itself";
    EXPECT_EQ(valueIn(m_first)->Text(), "b@b|d|");
    EXPECT_EQ(m_changes.count(), 1);
    EXPECT_EQ(m_changes.lastPool(), m_first);
    EXPECT_EQ(valueIn(m_second)->Text(), "b@a|b|c|") << "another pool does not see it";
}

TEST_F(StringSelectionInput, takesTheNewListsChoiceIfTheOldOneIsMissing)
{
    EXPECT_EQ(updateSelection(slot(), m_first, make("d,e", "e")), "e");
    EXPECT_EQ(valueIn(m_first)->Text(), "e@d|e|");
    EXPECT_EQ(updateSelection(slot(), m_first, make("f,g", "")), "") << "even if that is empty";
    EXPECT_EQ(valueIn(m_first)->Text(), "@f|g|");
    EXPECT_EQ(m_changes.count(), 2);
}

TEST_F(StringSelectionInput, choosesTheFirstEntryOfANewListIfNothingWasChosen)
{
    heldBy(valueIn(m_first))->selection.clear();
    EXPECT_EQ(updateSelection(slot(), m_first, make("a,c", "c")), "a");
    EXPECT_EQ(valueIn(m_first)->Text(), "a@a|c|");
    EXPECT_EQ(m_changes.count(), 1);
}

TEST_F(StringSelectionInput, reportsThatThereIsNothingToChoose)
{
    heldBy(valueIn(m_first))->selection.clear();
    testing::internal::CaptureStdout();
    EXPECT_EQ(updateSelection(slot(), m_first, make("", "x")), "x");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "  .......>  No strings selection found!\n\n");
    EXPECT_EQ(valueIn(m_first)->Text(), "x@");

    testing::internal::CaptureStdout();
    EXPECT_EQ(updateSelection(slot(), m_first, make("", "y")), "y");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "a former choice is lost silently";
}

TEST_F(StringSelectionInput, isNotAnnouncedIfListAndChoiceAreUnchanged)
{
    const Selection held = heldBy(valueIn(m_first));
    const Ageable before = valueIn(m_first)->age();
    const Selection fresh = make("a,b,c", "c");
    EXPECT_EQ(updateSelection(slot(), m_first, fresh), "b");
    EXPECT_EQ(fresh->selection, "b");
    EXPECT_EQ(m_changes.count(), 0);
    EXPECT_EQ(heldBy(valueIn(m_first)).get(), held.get());
    EXPECT_EQ(valueIn(m_first)->age(), before);

    EXPECT_EQ(updateSelection(slot(), m_first, make("a,c,b", "")), "b");
    EXPECT_EQ(m_changes.count(), 1) << "a list in another order differs";
}

TEST_F(StringSelectionInput, isAnnouncedEvenIfTheHeldSelectionIsPassedBack)
{
    const Selection held = heldBy(valueIn(m_first));
    EXPECT_EQ(updateSelection(slot(), m_first, held), "b");
    EXPECT_EQ(m_changes.count(), 0);
    held->selection.clear();
    EXPECT_EQ(updateSelection(slot(), m_first, held), "a");
    EXPECT_EQ(m_changes.count(), 1);
}

TEST_F(StringSelectionInput, hasNoChoiceIfItHoldsNull)
{
    const TypedSlot<Selection> empty(m_object.get(), "empty", nullptr, nullptr, 0, true);
    const Changes changes(empty.parameter());
    EXPECT_EQ(updateSelection(empty, m_first, make("a,c", "c")), "a");
    EXPECT_EQ(empty.value(m_first)->selection, "a");
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(StringSelectionInput, isUnchangedWithoutANewList)
{
    EXPECT_EQ(updateSelection(slot(), m_first, nullptr), "");
    EXPECT_EQ(m_changes.count(), 0);
    EXPECT_EQ(valueIn(m_first)->Text(), "b@a|b|c|");
}

TEST_F(StringSelectionInput, onlyReturnsTheChoiceWithoutASlotOrAPool)
{
    const Warnings warnings;
    const TypedSlot<Selection> nowhere(nullptr, "nowhere", nullptr, nullptr, 0, true);
    EXPECT_EQ(updateSelection(nowhere, m_first, make("a,c", "c")), "a");
    EXPECT_EQ(updateSelection(slot(), nullptr, make("a,c", "c")), "a");
    EXPECT_EQ(m_changes.count(), 0);
}

TEST_F(StringSelectionInput, offersTheNewListInTheConnectedParameter)
{
    const StrongPtr<VSlotContainer> source(new VSlotContainer);
    const VOutput<Selection> output(source.get(), "names", make("x,y", "y"));
    ASSERT_TRUE(m_object->attachOutput(source->findOutput("names"), slot().slot(), ""));
    EXPECT_EQ(updateSelection(slot(), m_first, make("y,z", "z")), "y");
    EXPECT_EQ(output.parameter()->getValueBase(m_first)->Text(), "y@y|z|");
}

TEST_F(StringSelectionInput, runsItsReadersOnlyInTheChangedPool)
{
    for (const auto& pool : {m_first, m_second}) {
        VScheduler::schedule(m_object, 0, pool);
        VScheduler::run(pool);
    }
    m_object->seen.clear();
    updateSelection(slot(), m_first, make("c,d", "d"));
    VScheduler::run(m_first);
    VScheduler::run(m_second);
    EXPECT_THAT(m_object->seen, ElementsAre("d"));
    updateSelection(slot(), m_first, make("c,d", "c"));
    VScheduler::run(m_first);
    EXPECT_THAT(m_object->seen, ElementsAre("d")) << "nothing changed";
}

} // namespace VStringListTest
