// Loads fathom and client libraries like a host that knows none of them: this program
// links only the libraries below fathom and reaches everything else through the
// registries.

#include "Recorders.hpp"

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VObject.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VScheduler.hpp>
#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueComponents.hpp>
#include <trellis/VValueCreator.hpp>

#include <loam/TypeInfo.hpp>

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <dlfcn.h>

namespace BoundariesTest {

using namespace Orla;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

constexpr const char* fathom = FATHOM_LIBRARY;
constexpr const char* first = FIRST_CLIENT;
constexpr const char* second = SECOND_CLIENT;

// Keeps a library loaded while this object exists.
class Library {
public:
    explicit Library(const char* path, int scope = RTLD_LOCAL) : m_handle{dlopen(path, RTLD_NOW | scope)}
    {
        if (!m_handle)
            throw std::runtime_error(dlerror());
    }
    Library(Library&& other) noexcept : m_handle{std::exchange(other.m_handle, nullptr)} {}
    Library& operator=(Library&&) = delete;
    ~Library() { unload(); }

    void unload()
    {
        if (m_handle)
            dlclose(std::exchange(m_handle, nullptr));
    }

private:
    void* m_handle;
};

bool isLoaded(const char* path)
{
    void* const handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}

// A type that this program knows only by its mangled name.
class ForeignType : public std::type_info {
public:
    explicit ForeignType(const char* name) : std::type_info(name) {}
};

constexpr const char* rangeType = "N4Orla5RangeE";
constexpr const char* timeType = "N4Orla5VTimeE";
constexpr const char* eventType = "N4Orla17VInteractionEventE";
constexpr const char* flagsType = "N4Orla8FlagListE";
constexpr const char* selectionType = "N4Loam6StrongIN4Orla15StringSelectionEEE";
constexpr const char* chartType = "N4Orla6VChartE";
constexpr const char* tallyType = "N6Shared5TallyE";
constexpr const char* firstValue = "N5First10FirstValueE";
constexpr const char* secondValue = "N6Second11SecondValueE";

std::vector<std::string> components(const char* type)
{
    return VValueComponents::names(ForeignType(type));
}

// A snapshot of the registries and counters of the process.
struct Registries {
    std::vector<std::string> values = VValueCreator::names();
    std::vector<std::string> slots = TypedSlotCreator::typeKeys();
    std::vector<std::string> objects = VObjectCreator::names();
    std::vector<std::vector<std::string>> parts{components(rangeType), components(timeType), components(firstValue),
                                                components(secondValue)};
    std::vector<std::string> labels{VTypeLabel::of(ForeignType(rangeType)), VTypeLabel::of(ForeignType(firstValue))};
    std::size_t livingObjects = VManagedObject::count();
    std::size_t memory = Loam::ChunkBase::TotalMemsize;

    friend bool operator==(const Registries&, const Registries&) = default;
};

void useFathom()
{
    const struct {
        const char* type;
        const char* text;
        const char* written;
    } cases[] = {
        {"double", " 45.0", "45"},
        {"char", "c", "c"},
        {"string", " as it is", " as it is"},
        {"Range", "0,1", "0:1"},
        {"VTime", "5[0,10]", "5[0,10]@10"},
    };
    for (const auto& [type, text, written] : cases) {
        SCOPED_TRACE(type);
        bool ok = false;
        const StrongPtr<VValueBase> value = VValueCreator::createValue(type, text, ok);
        EXPECT_TRUE(ok);
        ASSERT_TRUE(value);
        EXPECT_EQ(value->Text(), written);
        EXPECT_FALSE(value->copy()->isDifferentFrom(value));
        EXPECT_EQ(value->getChunk(3)->size(), 3u);
    }
    bool ok = false;
    const StrongPtr<VValueBase> value = VValueCreator::createValue("VTime", "5[0,10]", ok);
    EXPECT_TRUE(value->component("range")->setValueFromText("3:4"));
    EXPECT_EQ(value->Text(), "5[3,4]@10");

    const StrongPtr<TypedSlotCreator> slots = TypedSlotCreator::find(ForeignType(rangeType));
    ASSERT_TRUE(slots);
    const StrongPtr<VSlotContainer> container(new VSlotContainer);
    const StrongPtr<VSlot> slot = slots->newSlot(container.get(), "limits", "2:3", ok, nullptr, 0);
    ASSERT_TRUE(slot);
    EXPECT_EQ(slot->parameter()->DefaultValue()->Text(), "2:3");
}

// Runs one counter per type; each reads the previous one. Returns what they report.
std::string runCounters(const std::vector<std::string>& types)
{
    const StrongPtr<ValuePool> pool(new ValuePool);
    std::vector<StrongPtr<VObject>> counters;
    for (const std::string& type : types) {
        const StrongPtr<VObject> counter = VObject::createObject(type, type);
        if (!counter)
            return "cannot create " + type;
        if (!counters.empty()
            && !counter->attachOutput(counters.back()->findOutput("counted"), counter->findSlot("tally"), ""))
            return "not connected";
        counters.push_back(counter);
    }
    VScheduler::scheduleAll(pool);
    VScheduler::run(pool);
    std::string result;
    for (const StrongPtr<VObject>& counter : counters) {
        result += counter->findOutput("report")->getValueBase(pool)->Text() + " and counts "
                  + counter->findOutput("counted")->getValueBase(pool)->Text() + "; ";
        VManagedObject::remove(counter);
    }
    return result;
}

std::string textOf(const char* type, const std::string& text)
{
    bool ok = false;
    const StrongPtr<VValueBase> value = VValueCreator::createValue(type, text, ok);
    return ok && value ? value->Text() : "none";
}

// Holds objects past the end of the libraries they come from: constructed before those
// are loaded, the keeper is destroyed after their statics when the program exits.
struct Keeper {
    ~Keeper()
    {
        if (!value)
            return;
        value->setValueFromText("6[1,9]");
        const std::string text = "value " + value->Text() + ", copy " + value->copy()->Text() + ", component "
                                 + component->Text() + ", slot " + slot->parameter()->newValue()->Text() + ", creator "
                                 + (value->getValueCreator() ? "present" : "absent") + ", pointer "
                                 + (*typedCreator ? "set" : "null");
        std::fprintf(stderr, "%s\n", text.c_str());
    }

    StrongPtr<VValueBase> value;
    StrongPtr<VValueBase> component;
    StrongPtr<ChunkBase> chunk;
    StrongPtr<VSlotContainer> container;
    StrongPtr<VSlot> slot;
    StrongPtr<VValueCreator> creator;
    void** typedCreator = nullptr; // the pointer through which values of the type find it
    StrongPtr<TypedSlotCreator> slotCreator;
    StrongPtr<VObject> object;
    StrongPtr<ValuePool> pool;
};

Keeper keeper;

// Fills the keeper and exits the program.
[[noreturn]] void keepAndExit(const char* library, const char* objectType)
{
    void* const handle = dlopen(library, RTLD_NOW);
    bool ok = false;
    keeper.value = VValueCreator::createValue("VTime", "5[0,10]", ok);
    keeper.component = keeper.value->component("range");
    keeper.chunk = keeper.value->getChunk(3);
    keeper.container = Loam::makeStrong<VSlotContainer>();
    keeper.slotCreator = TypedSlotCreator::find(ForeignType(rangeType));
    keeper.slot = keeper.slotCreator->newSlot(keeper.container.get(), "limits", "2:3", ok, nullptr, 0);
    keeper.creator = keeper.value->getValueCreator();
    const char* const creatorOfTimes = "_ZN4Orla6VValueINS_5VTimeEE20theTypedValueCreatorE";
    keeper.typedCreator = static_cast<void**>(dlsym(handle, creatorOfTimes));
    if (objectType) {
        keeper.object = VObject::createObject(objectType, "kept");
        keeper.pool = Loam::makeStrong<ValuePool>();
        VScheduler::scheduleAll(keeper.pool);
        VScheduler::run(keeper.pool);
    }
    std::exit(ok && *keeper.typedCreator == keeper.creator.get() ? EXIT_SUCCESS : EXIT_FAILURE);
}

class BoundariesTest : public testing::Test {
protected:
    BoundariesTest() { EXPECT_FALSE(isLoaded(fathom) || isLoaded(first) || isLoaded(second)); }

    ~BoundariesTest() override
    {
        EXPECT_FALSE(isLoaded(fathom) || isLoaded(first) || isLoaded(second)) << "a library is still loaded";
        EXPECT_EQ(Registries(), m_before);
    }

    const Registries m_before;
    const Warnings m_warnings;
};

class BoundariesInScope : public BoundariesTest, public testing::WithParamInterface<int> {};
class BoundariesDeathTest : public BoundariesTest {
protected:
    BoundariesDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

} // namespace

TEST_F(BoundariesTest, nothingIsRegisteredBelowFathom)
{
    EXPECT_THAT(m_before.values, IsEmpty());
    EXPECT_THAT(m_before.slots, IsEmpty());
    EXPECT_THAT(m_before.objects, IsEmpty());
}

TEST_F(BoundariesTest, fathomRegistersOnlyItsCoreTypes)
{
    const Library library(fathom);
    const Registries now;
    EXPECT_THAT(now.values, ElementsAre("FlagList", "Range", "StrongPtr<StringSelection>", "VChart", "VChartList",
                                        "VInteractionEvent", "VObjectStatus", "VTime", "char", "double", "string"));
    EXPECT_THAT(now.slots, UnorderedElementsAre(rangeType, timeType, eventType, flagsType, selectionType, chartType,
                                                Loam::typeKey(typeid(char)), Loam::typeKey(typeid(std::string))));
    EXPECT_THAT(now.objects, IsEmpty());
    EXPECT_THAT(components(rangeType), ElementsAre("begin", "end"));
    EXPECT_THAT(components(timeType), ElementsAre("time", "range", "dt"));
    for (const std::string& name : now.values)
        EXPECT_TRUE(VValueCreator::find(name));
}

TEST_F(BoundariesTest, fathomCanBeUnloadedAndReloaded)
{
    for (int i = 0; i < 3; ++i) {
        {
            const Library library(fathom);
            EXPECT_TRUE(isLoaded(fathom));
            useFathom();
        }
        EXPECT_FALSE(isLoaded(fathom));
        EXPECT_EQ(Registries(), m_before);
    }
}

TEST_P(BoundariesInScope, aClientLibraryCanBeUnloadedAndReloaded)
{
    for (int i = 0; i < 3; ++i) {
        {
            const Library library(first, GetParam());
            EXPECT_TRUE(isLoaded(fathom)) << "the client loads its dependencies";
            useFathom();
            EXPECT_EQ(textOf("FirstValue", "2.5"), "2.5m");
            EXPECT_THAT(components(firstValue), ElementsAre("metres"));
            EXPECT_EQ(VTypeLabel::of(ForeignType(firstValue)), "First label");
            EXPECT_EQ(runCounters({"FirstCounter"}), "First sees 1.5 and counts 1; ");
        }
        EXPECT_FALSE(isLoaded(first) || isLoaded(fathom));
        EXPECT_EQ(Registries(), m_before);
        EXPECT_EQ(VObject::createObject("FirstCounter", "late"), nullptr);
        EXPECT_EQ(textOf("FirstValue", "2.5"), "none");
    }
}

TEST_P(BoundariesInScope, fathomStaysLoadedWhileAClientUsesIt)
{
    Library library(fathom, GetParam());
    const Library client(first, GetParam());
    library.unload();
    EXPECT_TRUE(isLoaded(fathom));
    useFathom();
}

TEST_P(BoundariesInScope, valuesOfOneLibraryCanBeReadInAnother)
{
    const Library one(first, GetParam());
    const Library two(second, GetParam());
    EXPECT_EQ(runCounters({"FirstCounter", "SecondCounter", "FirstCounter"}),
              "First sees 1.5 and counts 1; Second sees 1.5 and counts 2; First sees 1.5 and counts 3; ");

    // A library cannot use the value type that only the other one defines.
    const StrongPtr<VObject> counter = VObject::createObject("FirstCounter", "counter");
    bool ok = false;
    const StrongPtr<VValueBase> own = VValueCreator::createValue("FirstValue", "2", ok);
    const StrongPtr<VValueBase> foreign = VValueCreator::createValue("SecondValue", "3", ok);
    EXPECT_FALSE(own->getValueFrom(foreign));
    EXPECT_TRUE(own->isDifferentFrom(foreign));
    EXPECT_EQ(own->Text(), "2m");
    VManagedObject::remove(counter);
}

TEST_P(BoundariesInScope, aSharedTypeStaysRegisteredWhenOneOfItsLibrariesIsUnloaded)
{
    for (const bool inOrder : {true, false}) {
        SCOPED_TRACE(inOrder);
        Library one(first, GetParam());
        Library two(second, GetParam());
        const std::vector<std::string> values = VValueCreator::names();
        EXPECT_THAT(values, ElementsAre("FirstValue", "FlagList", "Range", "SecondValue", "StrongPtr<StringSelection>",
                                        "Tally", "VChart", "VChartList", "VInteractionEvent", "VObjectStatus", "VTime",
                                        "char", "disputed", "double", "string"));
        EXPECT_EQ(textOf("Tally", "7"), "7");
        (inOrder ? one : two).unload();
        EXPECT_EQ(textOf("Tally", "7"), "7");
        EXPECT_TRUE(TypedSlotCreator::find(ForeignType(tallyType)));
        EXPECT_EQ(runCounters({inOrder ? "SecondCounter" : "FirstCounter"}),
                  (inOrder ? "Second" : "First") + std::string(" sees 1.5 and counts 1; "));
        (inOrder ? two : one).unload();
        EXPECT_EQ(textOf("Tally", "7"), "none");
        EXPECT_FALSE(TypedSlotCreator::find(ForeignType(tallyType)));
    }
}

TEST_P(BoundariesInScope, aTakenNameIsRefusedForAnotherTypeAndReportedWithBothOwners)
{
    Library one(first, GetParam());
    EXPECT_THAT(m_warnings.all(), IsEmpty());
    const StrongPtr<VObjectCreator> object = VObjectCreator::find("Disputed");
    const StrongPtr<VValueCreator> value = VValueCreator::find("disputed");
    ASSERT_TRUE(object && value);
    {
        const Library two(second, GetParam());
        const auto namesBoth = [](const char* name) {
            return AllOf(HasSubstr(name), HasSubstr("taken by"), HasSubstr(first), HasSubstr(second));
        };
        EXPECT_THAT(m_warnings.all(), ElementsAre(namesBoth("\"disputed\"")));
        EXPECT_EQ(VObjectCreator::find("Disputed"), object);
        const auto libraries = VObjectCreator::libraries("Disputed");
        ASSERT_EQ(libraries.size(), 2u);
        const StrongPtr<VObject> chosen = VObject::createObject(libraries[1] + ":Disputed", "chosen", nullptr);
        EXPECT_EQ(m_warnings.all().size(), 1u);
        const StrongPtr<VObject> ambiguous = VObject::createObject("Disputed", "ambiguous", nullptr);
        EXPECT_TRUE(VManagedObject::remove(chosen) && VManagedObject::remove(ambiguous));
        EXPECT_EQ(m_warnings.all().back(), "Object \"ambiguous\" has the type \"Disputed\" of library \"" + libraries[0]
                                               + "\"; library \"" + libraries[1] + "\" has another type of that name");
        EXPECT_EQ(VValueCreator::find("disputed"), value);
    }
    EXPECT_EQ(VObjectCreator::find("Disputed"), object);
}

INSTANTIATE_TEST_SUITE_P(Local, BoundariesInScope, testing::Values(RTLD_LOCAL));
INSTANTIATE_TEST_SUITE_P(Global, BoundariesInScope, testing::Values(RTLD_GLOBAL));

TEST_F(BoundariesDeathTest, objectsThatOutliveFathomAtExitAreHarmless)
{
    EXPECT_EXIT(keepAndExit(fathom, nullptr), testing::ExitedWithCode(0),
                "value 6\\[1,9\\]@8, copy 6\\[1,9\\]@8, component 1:9, slot 2:3, creator absent, pointer null");
}

TEST_F(BoundariesDeathTest, objectsThatOutliveAClientLibraryAtExitAreHarmless)
{
    EXPECT_EXIT(keepAndExit(first, "FirstCounter"), testing::ExitedWithCode(0),
                "slot 2:3, creator absent, pointer null");
}

} // namespace BoundariesTest
