#include <fathom/VValue.hpp>

#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/String.hpp>
#include <fathom/VMemberValue.hpp>
#include <fathom/VTime.hpp>

#include <gmock/gmock.h>

#include <future>
#include <limits>
#include <memory>
#include <stdexcept>
#include <thread>
#include <type_traits>

namespace VValueTest {

using namespace Orla;

static_assert(std::is_base_of_v<VValueBase, VTypedValueBase<double>>);
static_assert(std::is_base_of_v<VTypedValueBase<double>, VValue<double>>);
static_assert(std::is_base_of_v<Ageable, VValue<double>>);
static_assert(std::is_abstract_v<VTypedValueBase<double>>);
static_assert(sizeof(VTypedValueBase<double>) == sizeof(VValueBase), "it adds nothing to the layout");
static_assert(!std::is_copy_constructible_v<VValue<double>> && !std::is_copy_assignable_v<VValue<double>>);
static_assert(!std::is_convertible_v<double, VValue<double>>);
static_assert(!std::is_copy_constructible_v<TypedValueCreator<double>>);
static_assert(std::is_same_v<StrongPtr<VValueBase>, StrongPtr<VValueBase, VValueBase>>);
static_assert(std::is_same_v<WeakPtrImpl<VManagedObject>, WeakPtrImpl<VManagedObject, VManagedObjectBase>>);

namespace {

// Counts its operations and throws on request.
struct Brittle {
    Brittle()
    {
        if (refuses == "construction")
            throw std::runtime_error(refuses);
        ++living;
    }
    Brittle(const Brittle& other) : number{other.number}
    {
        if (refuses == "copy" && copies >= copiesBefore)
            throw std::runtime_error(refuses);
        ++copies;
        ++living;
    }
    Brittle& operator=(const Brittle& other)
    {
        if (refuses == "assignment")
            throw std::runtime_error(refuses);
        ++assignments;
        number = other.number;
        return *this;
    }
    ~Brittle() { --living; }

    friend bool operator==(const Brittle& a, const Brittle& b)
    {
        ++comparisons;
        return a.number == b.number;
    }

    int number = 0;

    static inline std::string refuses;
    static inline int copiesBefore = 0;
    static inline int copies = 0;
    static inline int assignments = 0;
    static inline int comparisons = 0;
    static inline int living = 0;
};

// A pointer; a copy of its value must not share the object it points to.
using Shared = std::shared_ptr<int>;

// Each lacks one thing that a value type needs.
struct WithoutText {
    bool operator==(const WithoutText&) const = default;
};
struct WithoutComparison {};
struct WithoutDefault {
    explicit WithoutDefault(int) {}
    bool operator==(const WithoutDefault&) const = default;
};

} // namespace

} // namespace VValueTest

template<>
struct Orla::VValueTrait<VValueTest::WithoutComparison> {
    static std::string Text(const VValueTest::WithoutComparison&) { return {}; }
    static bool setValueFromText(VValueTest::WithoutComparison&, const std::string&) { return false; }
};

template<>
struct Orla::VValueTrait<VValueTest::WithoutDefault> {
    static std::string Text(const VValueTest::WithoutDefault&) { return {}; }
    static bool setValueFromText(VValueTest::WithoutDefault&, const std::string&) { return false; }
};

template<>
struct Orla::VValueTrait<VValueTest::Brittle> {
    using Brittle = VValueTest::Brittle;

    static std::string Text(const Brittle& value) { return VValueTrait<int>::Text(value.number); }

    static bool setValueFromText(Brittle& value, const std::string& text)
    {
        if (Brittle::refuses == "text")
            throw std::runtime_error("text");
        return VValueTrait<int>::setValueFromText(value.number, text);
    }
};

template<>
struct Orla::VValueTrait<VValueTest::Shared> {
    using Shared = VValueTest::Shared;

    static std::string Text(const Shared& value) { return value ? VValueTrait<int>::Text(*value) : "none"; }

    static bool setValueFromText(Shared& value, const std::string& text)
    {
        value = std::make_shared<int>();
        return VValueTrait<int>::setValueFromText(*value, text);
    }
};

template<>
struct Orla::VValueOperations<VValueTest::Shared> {
    using Shared = VValueTest::Shared;

    static bool areDifferent(const Shared& a, const Shared& b) { return *a != *b; }
    static Shared copyOf(const Shared& value) { return std::make_shared<int>(*value); }
};

namespace VValueTest {

namespace {

class VValueOfBrittle : public testing::Test {
protected:
    VValueOfBrittle() { Brittle::copies = Brittle::copiesBefore = Brittle::assignments = Brittle::comparisons = 0; }
    ~VValueOfBrittle() override { Brittle::refuses.clear(); }

    static std::uint32_t destroyed() { return VValue<Brittle>::theTypedValueCreator->destroyedValues(); }
};

template<class T>
StrongPtr<VValue<T>> make(const T& held)
{
    return Loam::makeStrong<VValue<T>>(held);
}

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

static_assert(ValueContent<double> && ValueContent<std::string> && ValueContent<Brittle>);
static_assert(ValueContent<Shared>, "its == would do, but it has its own operations");
static_assert(!ValueContent<WithoutText>);
static_assert(!ValueContent<WithoutComparison>);
static_assert(!ValueContent<WithoutDefault>);

TEST(VValue, canBeReadByCodeThatDoesNotKnowTheTextForm)
{
    const StrongPtr<VValueBase> other = make(1.5);
    EXPECT_EQ(VTypedValueBase<WithoutText>::cast(other.get()), nullptr);
}

TEST(VValue, refusesTheContentOfAnotherTypeEvenIfItsTextWouldFit)
{
    const auto number = make(2.5);
    EXPECT_FALSE(number->getValueFrom(make<std::string>("7")));
    EXPECT_FALSE(number->getValueFrom(make('7')));
    EXPECT_EQ(number->Text(), "2.5");
    EXPECT_FALSE(make<std::string>("")->getValueFrom(number));
}

TEST(VValue, takesItsContentFromAnyReadableValueOfItsType)
{
    // A component is not a VValue, but it is a value of its type.
    const auto range = make(Range{4, 5});
    const auto number = make(2.5);
    EXPECT_TRUE(number->getValueFrom(range->component("end")));
    EXPECT_EQ(number->Text(), "5");

    // A component without a container has no content.
    const auto orphan = Loam::makeStrong<VMemberValue<Range, double, &Range::end>>(nullptr);
    EXPECT_FALSE(number->getValueFrom(orphan));
    EXPECT_EQ(number->Text(), "5");
}

TEST(VValue, canBeComparedWithAnyValueOfItsType)
{
    const auto range = make(Range{4, NaN});
    const auto four = make(4.0);
    const auto five = make(5.0);
    const StrongPtr<VValueBase> begin = range->component("begin");
    const StrongPtr<VValueBase> end = range->component("end");
    EXPECT_FALSE(four->isDifferentFrom(begin));
    EXPECT_FALSE(begin->isDifferentFrom(four));
    EXPECT_TRUE(five->isDifferentFrom(begin));
    EXPECT_TRUE(begin->isDifferentFrom(five));
    EXPECT_FALSE(five->isDifferentFrom(end)) << "NaN is not different from a number";
    EXPECT_FALSE(end->isDifferentFrom(end));

    const auto orphan = Loam::makeStrong<VMemberValue<Range, double, &Range::end>>(nullptr);
    const StrongPtr<VValueBase> others[] = {four, make(0.0), begin, orphan};
    for (const StrongPtr<VValueBase>& other : others) {
        EXPECT_TRUE(other->isDifferentFrom(orphan)) << "its content cannot be read";
        EXPECT_TRUE(orphan->isDifferentFrom(other));
    }
}

// While the process has one thread, numbers are read without owning their value.
TEST(VValue, isComparedAndAssignedTheSameWayWithOtherThreads)
{
    const auto expectTheSameResults = [] {
        const auto four = make(4.0);
        const auto five = make(5.0);
        const auto text = make(std::string("4"));
        const auto alsoFour = make(4.0);
        EXPECT_FALSE(four->isDifferentFrom(alsoFour));
        EXPECT_TRUE(four->isDifferentFrom(five));
        EXPECT_TRUE(four->isDifferentFrom(text));
        EXPECT_TRUE(four->isDifferentFrom(nullptr));
        EXPECT_TRUE(four->getValueFrom(five));
        EXPECT_EQ(four->Text(), "5");
        EXPECT_FALSE(four->getValueFrom(text));
        WeakPtrImpl<VValueBase> destroyed;
        {
            const auto other = make(6.0);
            destroyed = other;
        }
        EXPECT_FALSE(four->getValueFrom(destroyed));
        EXPECT_TRUE(four->isDifferentFrom(destroyed));
        EXPECT_EQ(four->Text(), "5");
    };
    expectTheSameResults();
    std::promise<void> end;
    std::thread other([&] { end.get_future().wait(); });
    expectTheSameResults();
    end.set_value();
    other.join();
}

TEST(VValue, comparesNaNAsUsualInsideOtherTypes)
{
    EXPECT_FALSE(make(NaN)->isDifferentFrom(make(1.0)));
    EXPECT_TRUE(make(Range{NaN, 0})->isDifferentFrom(make(Range{NaN, 0})));
    EXPECT_TRUE(make(VTime{NaN})->isDifferentFrom(make(VTime{NaN})));
}

TEST(VValue, isExportedAsCopiesInAContiguousArray)
{
    const std::size_t before = Loam::ChunkBase::TotalMemsize;
    const StrongPtr<Loam::Chunk<double>> chunk(make(2.5)->getChunkOfValue(3));
    ASSERT_TRUE(chunk);
    EXPECT_THAT(chunk->base_vector(), testing::ElementsAre(2.5, 2.5, 2.5));
    EXPECT_EQ(Loam::ChunkBase::TotalMemsize, before + 24);
    EXPECT_EQ(make(2.5)->getChunkOfValue(0)->size(), 0u);
    EXPECT_EQ(Loam::ChunkBase::TotalMemsize, before + 24);
}

TEST(VValue, exportsTruthValuesAsCharacters)
{
    const StrongPtr<Loam::Chunk<char>> chunk(Loam::makeStrong<VValue<bool>>(true)->getChunkOfValue(2));
    ASSERT_TRUE(chunk);
    EXPECT_THAT(chunk->base_vector(), testing::ElementsAre(1, 1));
}

TEST(VValue, sharesTheSingleCreatorOfItsType)
{
    EXPECT_EQ(VValue<double>::theTypedValueCreator, &VValue<double>::myTypedValueCreator());
    EXPECT_EQ(make(1.0)->getValueCreator().get(), &VValue<double>::myTypedValueCreator());
    EXPECT_EQ(make(2.0)->getValueCreator(), VValueCreator::find("double"));
    EXPECT_NE(make('c')->getValueCreator(), VValueCreator::find("double"));
}

TEST(VValue, canBeCopiedWithoutSharing)
{
    const auto given = std::make_shared<int>(5);
    const auto value = make(given);
    const StrongPtr<VValue<Shared>> copy(value->copy());
    *given = 7;
    EXPECT_EQ(value->Text(), "5");
    EXPECT_FALSE(value->isDifferentFrom(copy));

    Shared read;
    value->getValue(read);
    *read = 6;
    EXPECT_EQ(value->Text(), "6") << "reading shares as the type does";
    EXPECT_EQ(copy->Text(), "5");
    EXPECT_TRUE(value->isDifferentFrom(copy));

    copy->setValue(given);
    *given = 8;
    EXPECT_EQ(copy->Text(), "7");
}

TEST(TypedValueCreator, returnsTheValueEvenIfTheTextIsRefused)
{
    bool ok = true;
    StrongPtr<VValueBase> value = VValue<double>::myTypedValueCreator().create("x", ok);
    EXPECT_FALSE(ok);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->Text(), "0");

    ok = true;
    value = VValue<Range>::myTypedValueCreator().create("3:x", ok);
    EXPECT_FALSE(ok);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->Text(), "3:1") << "the value that the refused text left";

    value = VValue<Range>::myTypedValueCreator().create("3:4", ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(value->Text(), "3:4");
}

TEST(TypedValueCreator, countsDestroyedValuesOfItsType)
{
    const TypedValueCreator<Range>& ranges = VValue<Range>::myTypedValueCreator();
    const TypedValueCreator<VTime>& times = VValue<VTime>::myTypedValueCreator();
    const std::uint32_t destroyedRanges = ranges.destroyedValues();
    const std::uint32_t destroyedTimes = times.destroyedValues();
    {
        const auto value = make(Range{});
        const StrongPtr<VValueBase> copy = value->copy();
        const VValue<Range> local;
        EXPECT_EQ(ranges.destroyedValues(), destroyedRanges);
    }
    EXPECT_EQ(ranges.destroyedValues(), destroyedRanges + 3);
    EXPECT_EQ(times.destroyedValues(), destroyedTimes);
}

TEST(TypedValueCreator, doesNotReplaceTheFirstOneOfItsType)
{
    const StrongPtr<VValueCreator> first = VValueCreator::find("Range");
    const auto value = make(Range{});
    {
        const TypedValueCreator<Range> second;
        EXPECT_EQ(VValueCreator::find("Range"), first);
    }
    EXPECT_EQ(VValueCreator::find("Range"), first);
    EXPECT_EQ(value->getValueCreator(), first);
    EXPECT_EQ(VValue<Range>::theTypedValueCreator, first.get());
}

TEST_F(VValueOfBrittle, copiesItsContentOnce)
{
    const auto value = make(Brittle());
    Brittle::copies = 0;
    const StrongPtr<VValueBase> copy = value->copy();
    EXPECT_EQ(Brittle::copies, 1);
}

TEST_F(VValueOfBrittle, comparesAndAssignsWithoutCopies)
{
    const auto a = make(Brittle());
    const auto b = make(Brittle());
    Brittle::copies = 0;
    EXPECT_FALSE(a->isDifferentFrom(b));
    EXPECT_EQ(Brittle::comparisons, 1);
    EXPECT_EQ(Brittle::assignments, 0);
    EXPECT_TRUE(a->getValueFrom(b));
    EXPECT_EQ(Brittle::assignments, 1);
    EXPECT_EQ(Brittle::copies, 0);
}

TEST_F(VValueOfBrittle, isDestroyedIfItsTextTraitThrows)
{
    const int living = Brittle::living;
    const std::uint32_t before = destroyed();
    Brittle::refuses = "text";
    bool ok = false;
    EXPECT_THROW(VValue<Brittle>::myTypedValueCreator().create("1", ok), std::runtime_error);
    EXPECT_EQ(Brittle::living, living);
    EXPECT_EQ(destroyed(), before + 1);
}

TEST_F(VValueOfBrittle, leavesNothingBehindIfItCannotBeConstructed)
{
    const int living = Brittle::living;
    const std::uint32_t before = destroyed();
    Brittle::refuses = "construction";
    bool ok = false;
    EXPECT_THROW(VValue<Brittle>::myTypedValueCreator().create("1", ok), std::runtime_error);
    EXPECT_EQ(Brittle::living, living);
    EXPECT_EQ(destroyed(), before) << "there was no value yet";
}

TEST_F(VValueOfBrittle, isUnchangedIfItCannotBeCopied)
{
    const auto value = make(Brittle());
    value->setValueFromText("7");
    const int living = Brittle::living;
    Brittle::refuses = "copy";
    EXPECT_THROW(value->copy(), std::runtime_error);
    EXPECT_EQ(Brittle::living, living);
    EXPECT_EQ(value->Text(), "7");
}

TEST_F(VValueOfBrittle, countsNoMemoryForAnArrayThatFailsHalfway)
{
    const auto value = make(Brittle());
    const int living = Brittle::living;
    const std::size_t before = Loam::ChunkBase::TotalMemsize;
    Brittle::refuses = "copy";
    Brittle::copiesBefore = Brittle::copies + 2;
    EXPECT_THROW(value->getChunk(3), std::runtime_error);
    EXPECT_EQ(Brittle::living, living);
    EXPECT_EQ(Loam::ChunkBase::TotalMemsize, before);
}

TEST_F(VValueOfBrittle, propagatesExceptionsOfAssignment)
{
    const auto a = make(Brittle());
    const auto b = make(Brittle());
    b->setValueFromText("7");
    Brittle::refuses = "assignment";
    Brittle target;
    EXPECT_THROW(a->getValueFrom(b), std::runtime_error);
    EXPECT_THROW(a->setValue(target), std::runtime_error);
    EXPECT_THROW(a->getValue(target), std::runtime_error);
    EXPECT_EQ(a->Text(), "0");
}

TEST(VValue, isCountedByItsCreatorWhileItExists)
{
    const TypedValueCreator<Range>& creator = VValue<Range>::myTypedValueCreator();
    const int before = creator.existingValues();
    {
        const VValue<Range> unset;
        const VValue<Range> set{Range{1, 2}};
        EXPECT_EQ(creator.existingValues(), before + 2);
        const StrongPtr<VValueBase> copy = set.copy();
        bool ok = false;
        const StrongPtr<VValueBase> created = VValueCreator::createValue("Range", "1:2", ok);
        EXPECT_EQ(creator.existingValues(), before + 4);
    }
    EXPECT_EQ(creator.existingValues(), before);
}

TEST(VValue, isNotCountedIfItCannotBeCreated)
{
    const TypedValueCreator<Brittle>& creator = VValue<Brittle>::myTypedValueCreator();
    const int before = creator.existingValues();
    Brittle::refuses = "construction";
    EXPECT_THROW(VValue<Brittle>{}, std::runtime_error);
    Brittle::refuses.clear();
    EXPECT_EQ(creator.existingValues(), before);
}

} // namespace VValueTest
