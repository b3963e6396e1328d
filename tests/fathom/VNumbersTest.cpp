#include <fathom/VNumbers.hpp>

#include <fathom/Chunk.hpp>
#include <fathom/GyreFixedArray.hpp>
#include <fathom/GyrePhysicalSpacePoint.hpp>
#include <fathom/Position2D.hpp>
#include <fathom/Range.hpp>
#include <fathom/String.hpp>
#include <fathom/VTime.hpp>

#include <gmock/gmock.h>

namespace VNumbersTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(hasNumbers<double> && hasNumbers<unsigned short> && hasNumbers<Range>);
static_assert(hasNumbers<Gyre::FixedArray<int, 3>> && hasNumbers<Gyre::PhysicalSpace::point>);
static_assert(hasNumbers<StrongPtr<Loam::TypedChunk<float>, Loam::ChunkBase>>);
static_assert(!hasNumbers<std::string> && !hasNumbers<bool> && !hasNumbers<char>);

namespace {

template<class T>
std::vector<double> numbersIn(const T& content)
{
    return numbersOf(*Loam::makeStrong<VValue<T>>(content));
}

template<class T>
StrongPtr<Loam::TypedChunk<T>, Loam::ChunkBase> read(const std::string& text)
{
    StrongPtr<Loam::TypedChunk<T>> array;
    EXPECT_TRUE(ParseString<T>(array, text));
    return array;
}

} // namespace

TEST(Numbers, ofANumberAreTheNumberItself)
{
    EXPECT_THAT(numbersIn(1.5), ElementsAre(1.5));
    EXPECT_THAT(numbersIn(2.5f), ElementsAre(2.5));
    EXPECT_THAT(numbersIn<short>(-3), ElementsAre(-3));
    EXPECT_THAT(numbersIn(4u), ElementsAre(4));
    EXPECT_THAT(numbersIn(5LL), ElementsAre(5));
}

TEST(Numbers, ofAnArrayOrAPointAreItsElements)
{
    EXPECT_THAT(numbersIn(read<double>("1,2.5")), ElementsAre(1, 2.5));
    EXPECT_THAT(numbersIn(read<int>("1,2,3")), ElementsAre(1, 2, 3));
    EXPECT_THAT(numbersIn(StrongPtr<Loam::TypedChunk<double>, Loam::ChunkBase>{}), IsEmpty());
    EXPECT_THAT(numbersIn(Gyre::FixedArray<int, 3>{{1, 2, 3}}), ElementsAre(1, 2, 3));
    EXPECT_THAT(numbersIn(Gyre::FixedArray<double, 2>{{1, 2}}), ElementsAre(1, 2));
    EXPECT_THAT(numbersIn(Gyre::PhysicalSpace::point{1, 2, 3}), ElementsAre(1, 2, 3));
}

TEST(Numbers, ofOtherValuesAreThoseOfTheirComponents)
{
    EXPECT_THAT(numbersIn(Range{1, 2}), ElementsAre(1, 2));
    EXPECT_THAT(numbersIn(VTime{0.5, 0, 1, 0.25, "", "", ""}), ElementsAre(0.5, 0, 1, 0.25));
    EXPECT_THAT(numbersIn(std::string("5")), IsEmpty());
}

} // namespace VNumbersTest
