#include <fathom/VChart.hpp>

#include "Recorders.hpp"
#include "support/SlotLaws.hpp"
#include "support/ValueLaws.hpp"

#include <fathom/VMemberValue.hpp>

#include <trellis/VScheduler.hpp>

#include <gmock/gmock.h>

#include <type_traits>

namespace VChartTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::is_base_of_v<VObject, VChartSelector>);
static_assert(std::is_base_of_v<VSlotContainer, VChartDependent>);
static_assert(std::is_base_of_v<VPolyOutput<VChartList, VChartSelector>, Atlas>);
static_assert(std::has_virtual_destructor_v<VChartDependent>);

namespace {

// A value that contains a chart list.
struct Survey {
    VChartList charts;
    bool operator==(const Survey&) const = default;
};

const VValueComponents surveyComponents{typeid(Survey),
                                        {VMemberValue<Survey, VChartList, &Survey::charts>::component("charts")}};

} // namespace

} // namespace VChartTest

template<>
struct Orla::VValueTrait<VChartTest::Survey> {
    using Survey = VChartTest::Survey;

    static std::string Text(const Survey&) { return {}; }
    static bool setValueFromText(Survey&, const std::string&) { return false; }
};

template<>
std::vector<Orla::VChart> samples<Orla::VChart>()
{
    using Orla::VChart;
    return {VChart{}, VChart{"geographic"}, VChart{" plate carree\n"}, VChart{"------CHART--------"}};
}

namespace VChartTest {

INSTANTIATE_TYPED_TEST_SUITE_P(VChart, ValueLaws, VChart);
INSTANTIATE_TYPED_TEST_SUITE_P(VChart, SlotLaws, VChart);

namespace {

VChartList listOf(std::vector<VChart> charts)
{
    return VChartList{std::move(charts)};
}

std::vector<std::string> namesIn(const VChartList& list)
{
    std::vector<std::string> names;
    for (const VChart& chart : list)
        names.push_back(chart.name());
    return names;
}

} // namespace

TEST(VChart, takesAnyTextAsItsNameWithoutTrimming)
{
    for (const char* text : {"", " ", "geographic", " a b\t"}) {
        VChart chart{"before"};
        EXPECT_TRUE(VValueTrait<VChart>::setValueFromText(chart, text));
        EXPECT_EQ(chart.name(), text);
        EXPECT_EQ(VValueTrait<VChart>::Text(chart), text);
    }
}

TEST(VChart, isOrderedByTheBytesOfItsName)
{
    const std::vector<VChart> ordered{"", "Z", "a", "aa", "ab", "b", "\xc3\xa9"};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            EXPECT_EQ(ordered[i] < ordered[j], i < j) << i << " and " << j;
            EXPECT_EQ(ordered[i] == ordered[j], i == j) << i << " and " << j;
        }
    }
}

TEST(VChart, canBeAnElementOfAnArray)
{
    const auto charts = Loam::TypedChunk<VChart>::createNewChunk(2);
    (*charts)[1] = VChart{"geocentric"};
    EXPECT_EQ((*charts)[0], VChart{});
    const auto lists = Loam::TypedChunk<VChartList>::createNewChunk(1);
    EXPECT_TRUE((*lists)[0].empty());
}

TEST(VChartList, holdsEachChartOnceOrderedByName)
{
    VChartList list;
    EXPECT_TRUE(list.insert("b"));
    EXPECT_TRUE(list.insert("c"));
    EXPECT_TRUE(list.insert("a"));
    EXPECT_FALSE(list.insert("b"));
    EXPECT_THAT(namesIn(list), ElementsAre("a", "b", "c"));
    EXPECT_THAT(namesIn(listOf({"c", "a", "c", "b", "a"})), ElementsAre("a", "b", "c"));
}

TEST(VChartList, findsAChartByItsWholeName)
{
    const VChartList list = listOf({"geographic", "", "plate carree"});
    EXPECT_TRUE(list.find("geographic"));
    EXPECT_TRUE(list.find(""));
    EXPECT_FALSE(list.find("geo"));
    EXPECT_FALSE(list.find("Geographic"));
    EXPECT_FALSE(VChartList().find(""));
}

TEST(VChartList, insertsTheMissingChartsOfAnotherList)
{
    VChartList list = listOf({"b", "d"});
    EXPECT_EQ(list.insert(listOf({"e", "b", "a", "c"})), 3u);
    EXPECT_THAT(namesIn(list), ElementsAre("a", "b", "c", "d", "e"));
    EXPECT_EQ(list.insert(VChartList{}), 0u);
    EXPECT_EQ(list.insert(list), 0u);
    EXPECT_EQ(list.size(), 5u);
}

TEST(VChartList, isEqualRegardlessOfTheOrderOfInsertion)
{
    EXPECT_EQ(listOf({"a", "b"}), listOf({"b", "a"}));
    EXPECT_NE(listOf({"a", "b"}), listOf({"a"}));
    EXPECT_NE(listOf({"a", "b"}), listOf({"a", "c"}));
    EXPECT_EQ(VChartList{}, VChartList{});
}

TEST(VChartList, isWrittenAsAMarkerAndNeverRead)
{
    // Every run gathers the list again, so a saved one would be out of date.
    const std::string mark = "------CHART--------";
    VChartList list = listOf({"a"});
    EXPECT_EQ(VValueTrait<VChartList>::Text(list), mark);
    EXPECT_EQ(VValueTrait<VChartList>::Text(VChartList{}), mark);
    for (const std::string& text : {std::string{}, mark, std::string{"a"}}) {
        EXPECT_FALSE(VValueTrait<VChartList>::setValueFromText(list, text));
        EXPECT_EQ(list, listOf({"a"}));
    }
}

TEST(VChartList, isCreatedEmptyByNameAndRefusesItsText)
{
    bool ok = true;
    const auto value = VValueCreator::createValue(Loam::Typename(typeid(VChartList)), "a", ok);
    EXPECT_FALSE(ok);
    const StrongPtr<VTypedValueBase<VChartList>> typed(value);
    ASSERT_TRUE(typed);
    VChartList list = listOf({"x"});
    EXPECT_TRUE(typed->getValue(list));
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(value->Text(), "------CHART--------");
}

TEST(VChartList, cannotBeAnInputCreatedFromText)
{
    EXPECT_TRUE(TypedSlotCreator::find(typeid(VChart)));
    EXPECT_FALSE(TypedSlotCreator::find(typeid(VChartList)));
}

namespace {

// Publishes its charts and counts its updates.
class Chartmaker : public VObject, public Atlas {
public:
    explicit Chartmaker(const std::string& name, VChartList theCharts = {})
        : VObject{name, 0, nullptr}, Atlas{"charts"}, charts{std::move(theCharts)}
    {
    }

    bool update(VRequest& request, double) override
    {
        ++runs;
        publish(request.valuePool(), charts);
        return true;
    }

    VChartList charts;
    unsigned runs = 0;
};

// Records the chart of each update.
class Follower : public VObject, public VChartDependent {
public:
    explicit Follower(const std::string& name) : VObject{name, 0, nullptr}, VChartDependent{"chart", 3} {}

    bool update(VRequest& request, double) override
    {
        seen.push_back(getChart(request.valuePool()).name());
        return true;
    }

    std::vector<std::string> seen;
};

// Depends on the chart and publishes charts, which forms a loop with the selector.
class Field : public VObject, public VChartDependent, public Atlas {
public:
    explicit Field(const std::string& name, VChartList theCharts)
        : VObject{name, 0, nullptr}, VChartDependent{"chart", 0}, Atlas{"charts"}, charts{std::move(theCharts)}
    {
    }

    bool update(VRequest& request, double) override
    {
        ++runs;
        seen = getChart(request.valuePool());
        publish(request.valuePool(), charts);
        return true;
    }

    VChartList charts;
    VChart seen;
    unsigned runs = 0;
};

class VChartSelectorTest : public testing::Test {
protected:
    VChartSelectorTest() { EXPECT_EQ(VManagedObject::count(), 0u); }

    ~VChartSelectorTest() override
    {
        struct All final : VManagedObjectIterator {
            bool apply(const StrongPtr<VManagedObject>& object) override
            {
                objects.push_back(object);
                return true;
            }
            std::vector<StrongPtr<VManagedObject>> objects;
        } all;
        VManagedObject::traverse(all, -1000, 1000);
        for (const auto& object : all.objects)
            VManagedObject::remove(object);
        EXPECT_THAT(warnings.all(), IsEmpty());
    }

    template<class T, class... Arguments>
    static StrongPtr<T> announce(Arguments... arguments)
    {
        const auto object = Loam::makeStrong<T>(arguments...);
        VObject::finishCreation(object);
        return object;
    }

    static StrongPtr<VChartSelector> selector() { return VChartSelector::getChartSelector(); }

    VChartList atlas() const
    {
        VChartList list;
        const auto value = selector()->findOutput("atlas")->getValueBase(pool);
        if (const auto* typed = VTypedValueBase<VChartList>::cast(value.get()))
            typed->getValue(list);
        return list;
    }

    std::string current() const
    {
        const auto value = selector()->findOutput("CurrentChart")->getValueBase(pool);
        return value ? value->Text() : "none";
    }

    std::string wanted() const
    {
        const auto value = selector()->findSlot("chartname")->getValueBase(pool);
        return value ? value->Text() : "none";
    }

    static void want(const StrongPtr<ValuePool>& where, const std::string& name)
    {
        const StrongPtr<VSlot> slot = selector()->findSlot("chartname");
        const auto value = slot->getLocalValue(where);
        value->setValueFromText(name);
        slot->parameter()->notifyValueChange(value, where);
    }

    static void update(const StrongPtr<ValuePool>& where)
    {
        VRequest request{where};
        EXPECT_TRUE(selector()->update(request, 0));
    }

    void runEverything() const
    {
        VScheduler::scheduleAll(pool);
        VScheduler::run(pool);
    }

    const Warnings warnings;
    const StrongPtr<ValuePool> pool = Loam::makeStrong<ValuePool>();
};

using VChartDependentTest = VChartSelectorTest;
using AtlasTest = VChartSelectorTest;

} // namespace

TEST_F(VChartSelectorTest, isCreatedOnceAndRegistered)
{
    const auto first = selector();
    EXPECT_EQ(first->Name(), "ChartSelector");
    EXPECT_EQ(first->level(), 0);
    EXPECT_TRUE(first->isRegistered());
    EXPECT_TRUE(first->isRequestProcessingEnabled());
    EXPECT_FALSE(first->creationPreferences());
    EXPECT_EQ(selector(), first);
    EXPECT_EQ(VManagedObject::count(), 1u);
}

TEST_F(VChartSelectorTest, isCreatedAgainAfterItsRemoval)
{
    const WeakPtrImpl<VChartSelector> first = selector();
    VManagedObject::remove(selector());
    EXPECT_TRUE(first.expired());
    EXPECT_TRUE(selector()->isRegistered());
    EXPECT_EQ(VManagedObject::count(), 1u);
}

TEST_F(VChartSelectorTest, isKeptAfterItsRemovalWhileItHasAnOwner)
{
    const auto held = selector();
    VManagedObject::remove(held);
    EXPECT_EQ(selector(), held);
}

TEST_F(VChartSelectorTest, hasANameInputAndTwoOutputs)
{
    const auto object = selector();
    ASSERT_EQ(object->inputs().size(), 1u);
    EXPECT_EQ(object->inputs()[0]->name(), "chartname");
    EXPECT_EQ(object->inputs()[0]->type(), typeid(std::string));
    EXPECT_EQ(object->inputs()[0]->expertLevel(), 0);
    EXPECT_EQ(object->inputs()[0]->parameter()->DefaultValue()->Text(), "");
    ASSERT_EQ(object->outputs().size(), 2u);
    EXPECT_EQ(object->outputs()[0]->name(), "atlas");
    EXPECT_EQ(object->outputs()[0]->type(), typeid(VChartList));
    EXPECT_EQ(object->outputs()[1]->name(), "CurrentChart");
    EXPECT_EQ(object->outputs()[1]->type(), typeid(VChart));
    EXPECT_EQ(object->outputs()[1]->parameter()->DefaultValue()->Text(), "");
}

TEST_F(VChartSelectorTest, selectsAChartOfTheAtlasAndWritesItsNameIntoTheInput)
{
    announce<Chartmaker>("land", listOf({"geographic", "geocentric"}));
    selector();
    runEverything();
    EXPECT_EQ(current(), "");
    EXPECT_TRUE(selector()->selectChart(pool, "geocentric"));
    EXPECT_EQ(current(), "geocentric");
    EXPECT_EQ(wanted(), "geocentric");
}

TEST_F(VChartSelectorTest, refusesUnknownAndEmptyNamesAndStaysUnchanged)
{
    announce<Chartmaker>("land", listOf({"geographic", ""}));
    selector();
    runEverything();
    EXPECT_TRUE(selector()->selectChart(pool, "geographic"));
    for (const char* name : {"geocentric", "Geographic", "geo", ""}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(selector()->selectChart(pool, name));
        EXPECT_EQ(current(), "geographic");
        EXPECT_EQ(wanted(), "geographic");
    }
}

TEST_F(VChartSelectorTest, createsNoVariableIfItRefuses)
{
    const auto fresh = Loam::makeStrong<ValuePool>();
    EXPECT_FALSE(selector()->selectChart(fresh, "geographic"));
    for (const char* name : {"atlas", "CurrentChart"})
        EXPECT_FALSE(selector()->findOutput(name)->getValueBase(fresh)) << name;
    EXPECT_FALSE(selector()->findSlot("chartname")->getValueBase(fresh));
}

TEST_F(VChartSelectorTest, refusesWithoutAPool)
{
    EXPECT_FALSE(selector()->selectChart(nullptr, "geographic"));
    EXPECT_FALSE(selector()->selectChart(Loam::makeStrong<ValuePool>(), "geographic"));
}

TEST_F(VChartSelectorTest, selectsInAPoolThatHoldsNoneOfItsValuesYet)
{
    const auto land = announce<Chartmaker>("land", listOf({"geographic"}));
    const StrongPtr<VSlot> name = selector()->findSlot("chartname");
    ASSERT_TRUE(name->setInitialText("geographic"));
    land->publish(pool, land->charts);
    update(pool);
    EXPECT_EQ(current(), "geographic");
    EXPECT_EQ(wanted(), "geographic");
}

TEST_F(VChartSelectorTest, keepsOneSelectionPerPool)
{
    announce<Chartmaker>("land", listOf({"geographic", "geocentric"}));
    selector();
    const auto other = Loam::makeStrong<ValuePool>();
    runEverything();
    VScheduler::scheduleAll(other);
    VScheduler::run(other);
    selector()->selectChart(pool, "geographic");
    selector()->selectChart(other, "geocentric");
    EXPECT_EQ(current(), "geographic");
    EXPECT_EQ(selector()->findOutput("CurrentChart")->getValueBase(other)->Text(), "geocentric");
}

TEST_F(VChartSelectorTest, gathersTheUnionOfAllAtlases)
{
    announce<Chartmaker>("land", listOf({"geographic", "plate carree"}));
    announce<Chartmaker>("sea", listOf({"geocentric", "geographic"}));
    selector();
    runEverything();
    EXPECT_THAT(namesIn(atlas()), ElementsAre("geocentric", "geographic", "plate carree"));
}

TEST_F(VChartSelectorTest, keepsChartsThatAreNoLongerOffered)
{
    // A chart that a user selected stays selectable while the objects change.
    const auto land = announce<Chartmaker>("land", listOf({"geographic", "geocentric"}));
    selector();
    runEverything();
    land->charts = listOf({"geographic"});
    runEverything();
    EXPECT_THAT(namesIn(atlas()), ElementsAre("geocentric", "geographic"));
    EXPECT_TRUE(selector()->selectChart(pool, "geocentric"));
}

TEST_F(VChartSelectorTest, refreshesTheAtlasAndKeepsTheCurrentChartIfNoNameIsGiven)
{
    const auto land = announce<Chartmaker>("land", listOf({"geographic"}));
    selector();
    runEverything();
    selector()->selectChart(pool, "geographic");
    want(pool, "");
    land->charts = listOf({"geocentric"});
    runEverything();
    EXPECT_EQ(current(), "geographic");
    EXPECT_THAT(namesIn(atlas()), ElementsAre("geocentric", "geographic"));
}

TEST_F(VChartSelectorTest, followsItsNameInputAsSoonAsTheChartExists)
{
    const auto land = announce<Chartmaker>("land", listOf({"geographic"}));
    selector();
    want(pool, "geocentric");
    runEverything();
    EXPECT_EQ(current(), "");
    land->charts = listOf({"geocentric"});
    VScheduler::schedule(land, 0, pool);
    VScheduler::run(pool);
    EXPECT_EQ(current(), "geocentric");
}

TEST_F(VChartSelectorTest, announcesItsAtlasOnEveryUpdate)
{
    announce<Chartmaker>("land", listOf({"geographic"}));
    const Changes changes(selector()->findOutput("atlas")->parameter());
    update(pool);
    update(pool);
    EXPECT_EQ(changes.count(), 2);
    EXPECT_EQ(changes.lastPool(), pool);
}

TEST_F(VChartSelectorTest, ignoresInputsOfOtherTypes)
{
    const auto land = announce<Chartmaker>("land", listOf({"geographic"}));
    const TypedSlot<char> letter(selector().get(), "letter", 'x', 0);
    runEverything();
    EXPECT_THAT(namesIn(atlas()), ElementsAre("geographic"));
}

TEST_F(VChartSelectorTest, readsTheComponentThatAnInputNames)
{
    const auto follower = announce<Follower>("follower");
    const VOutput<Survey> survey(follower.get(), "survey", Survey{listOf({"local"})});
    const auto own = Loam::makeStrong<VValueParameter<VChartList>>(VChartList{}, "more", nullptr);
    const StrongPtr<VSlot> input = selector()->addParameter("more", 0, own, true);
    ASSERT_TRUE(selector()->attachParameter(survey.parameter(), input, "charts"));
    runEverything();
    EXPECT_THAT(namesIn(atlas()), ElementsAre("local"));
}

TEST_F(VChartSelectorTest, takesNoChartsFromAnInputThatIsNotSetAndLeavesItUnset)
{
    const auto own = Loam::makeStrong<VValueParameter<VChartList>>(listOf({"initial"}), "more", nullptr);
    const StrongPtr<VSlot> input = selector()->addParameter("more", 0, own, true);
    ASSERT_TRUE(input);
    update(pool);
    EXPECT_THAT(namesIn(atlas()), IsEmpty());
    EXPECT_FALSE(input->getValueBase(pool));
    ASSERT_TRUE(input->set(pool, listOf({"set"})));
    update(pool);
    EXPECT_THAT(namesIn(atlas()), ElementsAre("set"));
}

TEST_F(VChartSelectorTest, givesAccessToItsInputAndOutputs)
{
    announce<Chartmaker>("land", listOf({"geographic"}));
    const auto object = selector();
    runEverything();
    EXPECT_TRUE(object->selectChart(pool, "geographic"));
    EXPECT_EQ(object->chartnameSlot().value(pool), "geographic");
    EXPECT_EQ(object->atlas().value(pool), listOf({"geographic"}));
    EXPECT_EQ(object->currentChart().value(pool), VChart{"geographic"});
}

TEST_F(VChartSelectorTest, survivesAnUpdateWithoutAPool)
{
    announce<Chartmaker>("land", listOf({"geographic"}));
    update(nullptr);
    EXPECT_TRUE(atlas().empty());
}

TEST_F(VChartDependentTest, readsTheSelectorsCurrentChart)
{
    const auto follower = announce<Follower>("map");
    const StrongPtr<VSlot> slot = follower->findSlot("chart");
    EXPECT_EQ(slot->expertLevel(), 3);
    EXPECT_EQ(slot->parameter(), selector()->findOutput("CurrentChart")->parameter());
    EXPECT_EQ(slot->member(), "");
}

TEST_F(VChartDependentTest, allFollowTheSameSelection)
{
    const auto land = announce<Chartmaker>("land", listOf({"geographic", "geocentric"}));
    const auto first = announce<Follower>("first");
    const auto second = announce<Follower>("second");
    runEverything();
    selector()->selectChart(pool, "geocentric");
    VScheduler::run(pool);
    EXPECT_THAT(first->seen, ElementsAre("", "geocentric"));
    EXPECT_THAT(second->seen, ElementsAre("", "geocentric"));
    EXPECT_EQ(land->runs, 1u) << "it does not depend on the chart";
}

TEST_F(VChartDependentTest, followsAnotherChartThatTheUserConnects)
{
    class Fixed : public VObject {
    public:
        Fixed() : VObject{"fixed", 0, nullptr} {}
        bool update(VRequest&, double) override { return true; }
        VOutput<VChart> chart{this, "chart", VChart{"own"}};
    };
    const auto fixed = announce<Fixed>();
    const auto follower = announce<Follower>("map");
    EXPECT_TRUE(follower->attachOutput(fixed->findOutput("chart"), follower->findSlot("chart"), ""));
    runEverything();
    EXPECT_THAT(follower->seen, ElementsAre("own"));
}

TEST_F(VChartDependentTest, leavesNothingBehindWhenItIsDestroyed)
{
    announce<Chartmaker>("land", listOf({"geographic"}));
    {
        const auto follower = Loam::makeStrong<Follower>("map");
        runEverything();
    }
    EXPECT_TRUE(selector()->selectChart(pool, "geographic"));
    VScheduler::run(pool);
    EXPECT_EQ(current(), "geographic");
}

TEST_F(AtlasTest, joinsTheSelectorUnderTheNamesOfItsOwnerAndOutput)
{
    selector();
    const auto land = announce<Chartmaker>("land");
    EXPECT_EQ(land->requesterCount(), 1);
    const StrongPtr<VSlot> input = selector()->findSlot("land.charts");
    ASSERT_TRUE(input);
    EXPECT_EQ(input->expertLevel(), 0);
    EXPECT_EQ(input->parameter(), land->findOutput("charts")->parameter());
    EXPECT_EQ(land->output()->DefaultValue()->Text(), "------CHART--------");
}

TEST_F(AtlasTest, joinsASelectorThatIsCreatedLater)
{
    const auto land = announce<Chartmaker>("land", listOf({"geographic"}));
    EXPECT_EQ(land->requesterCount(), 0);
    selector();
    EXPECT_EQ(land->requesterCount(), 1);
    ASSERT_TRUE(selector()->findSlot("land.charts"));
    runEverything();
    EXPECT_TRUE(atlas().find("geographic"));
}

TEST_F(AtlasTest, joinsASelectorThatIsRegisteredWithoutAnAnnouncement)
{
    const auto before = announce<Chartmaker>("before");
    const auto quiet = Loam::makeStrong<VChartSelector>("quiet", 0, nullptr);
    ASSERT_TRUE(VManagedObject::add(quiet));
    const auto after = announce<Chartmaker>("after");
    EXPECT_EQ(before->requesterCount(), 1);
    EXPECT_EQ(after->requesterCount(), 1);
    EXPECT_TRUE(quiet->findSlot("before.charts"));
    EXPECT_TRUE(quiet->findSlot("after.charts"));
}

TEST_F(AtlasTest, contributesEvenIfAnotherHasTheSameNames)
{
    selector();
    announce<Chartmaker>("land", listOf({"geographic"}));
    announce<Chartmaker>("land", listOf({"geocentric"}));
    runEverything();
    EXPECT_THAT(namesIn(atlas()), ElementsAre("geocentric", "geographic"));
    EXPECT_TRUE(selector()->findSlot("land.charts"));
    EXPECT_TRUE(selector()->findSlot("land.charts #2"));
}

TEST_F(AtlasTest, leavesItsChartsInTheSelectorWhenItIsRemoved)
{
    selector();
    {
        const auto land = announce<Chartmaker>("land", listOf({"geographic"}));
        runEverything();
        VManagedObject::remove(land);
    }
    update(pool);
    EXPECT_TRUE(atlas().find("geographic"));
    EXPECT_TRUE(selector()->selectChart(pool, "geographic"));
}

TEST_F(AtlasTest, publishesOnlyChanges)
{
    const auto land = announce<Chartmaker>("land");
    const Changes changes(StrongPtr<ValueNotifierList>(land->output()));
    EXPECT_FALSE(land->publish(pool, VChartList{}));
    EXPECT_TRUE(land->publish(pool, listOf({"a"})));
    EXPECT_FALSE(land->publish(pool, listOf({"a"})));
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(AtlasTest, settlesInALoopWithTheSelectorWithoutNeedlessRuns)
{
    const auto first = announce<Field>("first", listOf({"geographic"}));
    const auto second = announce<Field>("second", listOf({"geocentric"}));
    want(pool, "geocentric");
    VScheduler::scheduleAll(pool);
    const VScheduler::Summary done = VScheduler::run(pool);
    EXPECT_EQ(done.outcome, VScheduler::Outcome::Done);
    EXPECT_EQ(done.stopped, 0u);
    EXPECT_EQ(first->seen, VChart{"geocentric"});
    EXPECT_EQ(second->seen, VChart{"geocentric"});
    // Once to publish their charts and once for the selected chart.
    EXPECT_EQ(first->runs, 2u);
    EXPECT_EQ(second->runs, 2u);

    // A manual selection runs each field once, and the selector for its name.
    selector()->selectChart(pool, "geographic");
    EXPECT_EQ(VScheduler::run(pool).updates, 3u);
    EXPECT_EQ(first->runs, 3u);
    EXPECT_EQ(second->runs, 3u);
    EXPECT_EQ(first->seen, VChart{"geographic"});
}

} // namespace VChartTest
