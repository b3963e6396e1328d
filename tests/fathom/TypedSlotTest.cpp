#include <fathom/TypedSlot.hpp>

#include "Recorders.hpp"

#include <fathom/Char.hpp>
#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/String.hpp>
#include <fathom/VTime.hpp>

#include <gmock/gmock.h>

#include <utility>

namespace TypedSlotTest {

using namespace Orla;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

static_assert(!std::is_polymorphic_v<TypedSlot<Range>> && !std::is_default_constructible_v<TypedSlot<Range>>);
static_assert(std::is_base_of_v<TypedSlotCreator, TypedSlot<Range>::SlotCreator>);

namespace {

class TypedSlotTest : public testing::Test {
protected:
    static std::string initialText(const StrongPtr<VSlot>& slot) { return slot->parameter()->DefaultValue()->Text(); }

    static int destroyedSlots() { return TypedSlotCreator::InternalTypeCreatorAccessory; }

    const Warnings m_warnings;
    const StrongPtr<VSlotContainer> m_container{new VSlotContainer};
    const StrongPtr<VCreationPreferences> m_preferences{new VCreationPreferences("a", "b")};
    const StrongPtr<ValuePool> m_pool{new ValuePool};
};

} // namespace

TEST_F(TypedSlotTest, addsAnInputToItsContainer)
{
    const TypedSlot<Range> slot(m_container.get(), "limits", Range{2, 3}, m_preferences, 7, true);
    EXPECT_EQ(slot.name(), "limits");
    EXPECT_EQ(slot.preferences(), m_preferences);
    EXPECT_EQ(slot.initialValue(), (Range{2, 3}));
    ASSERT_TRUE(slot.slot());
    EXPECT_EQ(m_container->findSlot("limits"), slot.slot());
    EXPECT_EQ(slot.slot()->name(), "limits");
    EXPECT_EQ(slot.slot()->expertLevel(), 7);
    EXPECT_EQ(slot.slot()->type(), typeid(Range));
    EXPECT_EQ(slot.parameter(), slot.slot()->parameter());
    EXPECT_TRUE(StrongPtr<VValueParameter<Range>>(slot.parameter()));
    EXPECT_EQ(slot.parameter()->Name(), "limits");
    EXPECT_EQ(slot.parameter()->creationPreferences(), m_preferences);
    EXPECT_EQ(slot.parameter()->creator().lock(), m_container);
    EXPECT_TRUE(slot.parameter()->source().expired());
    EXPECT_EQ(initialText(slot.slot()), "2:3");
}

TEST_F(TypedSlotTest, isFlaggedAsDeclaredAndNotAsAddedLater)
{
    const TypedSlot<Range> slot(m_container.get(), "limits", Range{}, m_preferences, 0, true);
    const TypedSlot<Range> passive(m_container.get(), "passive", Range{}, m_preferences, 0, false);
    EXPECT_EQ(slot.slot()->flags(), 0);
    EXPECT_EQ(passive.slot()->flags(), VSlot::Passive);

    const StrongPtr<VParameter> parameter(new VValueParameter<Range>(Range{}, "later", nullptr));
    EXPECT_EQ(m_container->addParameter("later", 0, parameter, true)->flags(), 0x08);
}

TEST_F(TypedSlotTest, triggersAndHasNoPreferencesInTheShortForm)
{
    const TypedSlot<Range> slot(m_container.get(), "limits", Range{2, 3}, 7);
    ASSERT_TRUE(slot.slot());
    EXPECT_EQ(slot.slot()->flags(), 0);
    EXPECT_EQ(slot.slot()->expertLevel(), 7);
    EXPECT_EQ(slot.preferences(), nullptr);
    EXPECT_EQ(slot.parameter()->creationPreferences(), nullptr);
    EXPECT_EQ(initialText(slot.slot()), "2:3");
}

TEST_F(TypedSlotTest, readsItsPoolOrElseItsInitialValue)
{
    const TypedSlot<Range> slot(m_container.get(), "limits", Range{2, 3}, 0);
    Range range{-1, -2};
    EXPECT_FALSE(slot.read(m_pool, range));
    EXPECT_FALSE(slot.read(nullptr, range));
    EXPECT_EQ(range, (Range{-1, -2}));
    EXPECT_EQ(slot.value(m_pool), (Range{2, 3}));
    EXPECT_EQ(slot.value(nullptr), (Range{2, 3}));

    slot.slot()->getLocalValue(m_pool)->setValueFromText("7:8");
    EXPECT_TRUE(slot.read(m_pool, range));
    EXPECT_EQ(range, (Range{7, 8}));
    EXPECT_EQ(slot.value(m_pool), (Range{7, 8}));
    EXPECT_EQ(slot.value(Loam::makeStrong<ValuePool>()), (Range{2, 3})) << "another pool does not see it";
}

TEST_F(TypedSlotTest, readsTheComponentItIsConnectedTo)
{
    const TypedSlot<Range> slot(m_container.get(), "limits", Range{2, 3}, 0);
    const StrongPtr<VParameter> times(new VValueParameter<VTime>(VTime{5, 0, 10}, "time", nullptr));
    ASSERT_TRUE(m_container->attachParameter(times, slot.slot(), "range"));
    EXPECT_EQ(slot.parameter(), times);
    EXPECT_EQ(slot.value(m_pool), (Range{2, 3})) << "the pool has no value yet";
    times->getLocalValue(m_pool);
    EXPECT_EQ(slot.value(m_pool), (Range{0, 10}));

    EXPECT_FALSE(m_container->tryAttachParameter(times, slot.slot(), "dt"));
    EXPECT_EQ(slot.value(m_pool), (Range{0, 10})) << "a refused connection keeps the existing one";
}

TEST_F(TypedSlotTest, reportsAMissingContainerAndStillWorks)
{
    const TypedSlot<Range> slot(nullptr, "limits", Range{2, 3}, m_preferences, 7, true);
    const TypedSlot<Range> shortForm(nullptr, "others", Range{4, 5}, 7);
    EXPECT_THAT(m_warnings.all(), ElementsAre(testing::AllOf(HasSubstr("\"limits\""), HasSubstr("range")),
                                              testing::AllOf(HasSubstr("\"others\""), HasSubstr("range"))));
    EXPECT_EQ(slot.slot(), nullptr);
    EXPECT_EQ(slot.parameter(), nullptr);
    EXPECT_EQ(slot.value(m_pool), (Range{2, 3}));
    EXPECT_EQ(shortForm.value(nullptr), (Range{4, 5}));
}

TEST_F(TypedSlotTest, hasNoSlotIfItsNameIsTaken)
{
    const TypedSlot<Range> first(m_container.get(), "limits", Range{2, 3}, 0);
    const TypedSlot<char> second(m_container.get(), "limits", 'x', 0);
    EXPECT_THAT(m_warnings.all(), ElementsAre(HasSubstr("\"limits\"")));
    EXPECT_EQ(second.slot(), nullptr);
    EXPECT_EQ(second.value(m_pool), 'x');
    EXPECT_EQ(m_container->findSlot("limits"), first.slot());
}

TEST_F(TypedSlotTest, sharesTheFrameworksSlotWithItsCopies)
{
    const TypedSlot<Range> slot(m_container.get(), "limits", Range{2, 3}, m_preferences, 7, true);
    TypedSlot<Range> copy(slot);
    EXPECT_EQ(copy.slot(), slot.slot());
    EXPECT_EQ(copy.name(), "limits");
    EXPECT_EQ(copy.preferences(), m_preferences);
    EXPECT_EQ(copy.initialValue(), (Range{2, 3}));
    EXPECT_EQ(m_container->inputs().size(), 1u);

    const TypedSlot<Range> other(m_container.get(), "other", Range{4, 5}, 0);
    copy = other;
    EXPECT_EQ(copy.slot(), other.slot());
    EXPECT_EQ(copy.name(), "other");
    EXPECT_EQ(copy.preferences(), nullptr);
    EXPECT_EQ(copy.initialValue(), (Range{4, 5}));
}

TEST_F(TypedSlotTest, leavesItsInputInTheContainerWhenItIsDestroyed)
{
    StrongPtr<VSlot> input;
    {
        const TypedSlot<Range> slot(m_container.get(), "limits", Range{2, 3}, 0);
        input = slot.slot();
    }
    EXPECT_EQ(m_container->findSlot("limits"), input);
    EXPECT_EQ(initialText(input), "2:3");
}

TEST_F(TypedSlotTest, outlivesItsContainer)
{
    StrongPtr<VSlotContainer> container(new VSlotContainer);
    const TypedSlot<Range> slot(container.get(), "limits", Range{2, 3}, 0);
    container.reset();
    EXPECT_EQ(slot.value(m_pool), (Range{2, 3}));
    EXPECT_TRUE(slot.parameter()->owner() == nullptr);
}

TEST_F(TypedSlotTest, isCountedWhenItIsDestroyed)
{
    const int before = destroyedSlots();
    {
        const TypedSlot<Range> slot(m_container.get(), "limits", Range{}, 0);
        const TypedSlot<Range> copy(slot);
        const TypedSlot<Range> nowhere(nullptr, "limits", Range{}, 0);
        EXPECT_EQ(destroyedSlots(), before);
    }
    EXPECT_EQ(destroyedSlots(), before + 3);
}

TEST_F(TypedSlotTest, complainsIfItIsDestroyedWhileItsTypeIsNotRegistered)
{
    EXPECT_TRUE(TypedSlot<Range>::isCreatorRegistered);
    const int before = destroyedSlots();
    testing::internal::CaptureStdout();
    {
        const TypedSlot<Range> slot(m_container.get(), "limits", Range{}, 0);
        TypedSlot<Range>::isCreatorRegistered = false;
    }
    TypedSlot<Range>::isCreatorRegistered = true;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Typeslot has a problem, its creators were not registered!?\n");
    EXPECT_EQ(destroyedSlots(), before);
}

TEST_F(TypedSlotTest, cannotBeCreatedFromTextForNumbers)
{
    EXPECT_EQ(TypedSlotCreator::find(typeid(double)), nullptr) << "double is a value type but not an input type";
}

TEST_F(TypedSlotTest, isCreatedFromRefusedTextWithTheValueItLeft)
{
    const struct {
        const std::type_info& type;
        const char* text;
        const char* left;
        bool ok;
    } cases[] = {
        {typeid(Range), "4:5", "4:5", true},    {typeid(Range), "x", "0:1", false},
        {typeid(Range), "3:x", "3:1", false},   {typeid(VTime), "noon", "0[0,0]@0", false},
        {typeid(VTime), "4", "4[4,4]@4", true}, {typeid(char), "two", "", false},
        {typeid(char), "c", "c", true},         {typeid(char), "", "", true},
        {typeid(std::string), "x", "x", true},
    };
    int number = 0;
    for (const auto& [type, text, left, accepted] : cases) {
        SCOPED_TRACE(text);
        const StrongPtr<TypedSlotCreator> creator = TypedSlotCreator::find(type);
        ASSERT_TRUE(creator);
        const std::string name = "input" + std::to_string(++number);
        bool ok = !accepted;
        const int before = destroyedSlots();
        const StrongPtr<VSlot> slot = creator->newSlot(m_container.get(), name, text, ok, m_preferences, 7);
        EXPECT_EQ(destroyedSlots(), before + 1) << "the typed slot is only a temporary";
        EXPECT_EQ(ok, accepted);
        ASSERT_TRUE(slot);
        EXPECT_EQ(m_container->findSlot(name), slot);
        EXPECT_EQ(slot->flags(), 0);
        EXPECT_EQ(slot->expertLevel(), 7);
        EXPECT_EQ(slot->parameter()->creationPreferences(), m_preferences);
        EXPECT_EQ(initialText(slot), left);
    }
    EXPECT_THAT(m_warnings.all(), IsEmpty());
}

TEST_F(TypedSlotTest, isCreatedNeitherWithoutAContainerNorTwice)
{
    const StrongPtr<TypedSlotCreator> creator = TypedSlotCreator::find(typeid(Range));
    bool ok = false;
    EXPECT_EQ(creator->newSlot(nullptr, "limits", "1:2", ok, nullptr, 0), nullptr);
    EXPECT_TRUE(ok) << "the text was fine";
    EXPECT_TRUE(creator->newSlot(m_container.get(), "limits", "1:2", ok, nullptr, 0));
    EXPECT_EQ(creator->newSlot(m_container.get(), "limits", "3:4", ok, nullptr, 0), nullptr);
    EXPECT_EQ(m_warnings.all().size(), 2u);
    EXPECT_EQ(initialText(m_container->findSlot("limits")), "1:2");
}

TEST_F(TypedSlotTest, keepsItsCreatorOnRepeatedRegistration)
{
    const StrongPtr<TypedSlotCreator> creator = TypedSlotCreator::find(typeid(Range));
    EXPECT_TRUE(TypedSlot<Range>::SlotCreator::registerCreator());
    EXPECT_EQ(TypedSlotCreator::find(typeid(Range)), creator);
    EXPECT_TRUE(StrongPtr<TypedSlot<Range>::SlotCreator>(creator));
}

TEST_F(TypedSlotTest, carriesADescriptionInItsPreferences)
{
    const TypedSlot<Range> slot(m_container.get(), "reach", Range{}, describe("The reach.").in("m").from(0), 3, false);
    const StrongPtr<VSlotDescription> description{slot.preferences()};
    ASSERT_TRUE(description);
    EXPECT_EQ(description->parts().unit, "m");
    EXPECT_EQ(slot.slot()->description(), description.get());
    EXPECT_EQ(slot.slot()->expertLevel(), 3);
    EXPECT_TRUE(slot.slot()->hasFlag(VSlot::Passive));
    const TypedSlot<Range> other(m_container.get(), "width", Range{}, describe("The reach.").in("m").from(0));
    EXPECT_EQ(other.preferences(), slot.preferences()) << "stored once";
    EXPECT_EQ(other.slot()->expertLevel(), 0);
    EXPECT_FALSE(other.slot()->hasFlag(VSlot::Passive));
}

TEST_F(TypedSlotTest, needsNoDescription)
{
    const TypedSlot<Range> slot(m_container.get(), "reach", Range{}, 0);
    EXPECT_EQ(slot.slot()->description(), nullptr);
}

} // namespace TypedSlotTest
