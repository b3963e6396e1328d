#include <trellis/detail/PointerList.hpp>

#include <gmock/gmock.h>

#include <array>
#include <utility>

namespace PointerListTest {

using Orla::Detail::PointerList;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pointee;

namespace {

class PointerListTest : public testing::Test {
protected:
    PointerListTest()
    {
        for (int i = 0; i < 8; ++i)
            numbers[static_cast<std::size_t>(i)] = i;
    }

    void add(std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
            list.push_back(&numbers[i]);
    }

    std::array<int, 8> numbers;
    PointerList<int> list;
};

} // namespace

static_assert(sizeof(PointerList<int>) == sizeof(int*));

TEST_F(PointerListTest, startsEmpty)
{
    EXPECT_THAT(list, IsEmpty());
    EXPECT_EQ(list.size(), 0u);
}

TEST_F(PointerListTest, keepsInsertionOrder)
{
    for (std::size_t count = 1; count <= numbers.size(); ++count) {
        list = {};
        add(count);
        ASSERT_EQ(list.size(), count);
        for (std::size_t i = 0; i < count; ++i)
            EXPECT_EQ(list[i], &numbers[i]);
        EXPECT_EQ(list.back(), &numbers[count - 1]);
    }
}

TEST_F(PointerListTest, movesTheLastPointerToThePlaceOfARemovedOne)
{
    add(4);
    list.removeAt(1);
    EXPECT_THAT(list, ElementsAre(Pointee(0), Pointee(3), Pointee(2)));
    list.removeAt(2);
    list.removeAt(0);
    EXPECT_THAT(list, ElementsAre(Pointee(3)));
    list.removeAt(0);
    EXPECT_THAT(list, IsEmpty());
    add(1);
    EXPECT_THAT(list, ElementsAre(Pointee(0)));
}

TEST_F(PointerListTest, isEmptyAfterItsOnlyPointerIsRemoved)
{
    add(1);
    list.removeAt(0);
    EXPECT_THAT(list, IsEmpty());
}

TEST_F(PointerListTest, keepsItsPointersWhenItReservesMemory)
{
    add(1);
    list.reserve(100);
    EXPECT_THAT(list, ElementsAre(Pointee(0)));
    add(2);
    EXPECT_THAT(list, ElementsAre(Pointee(0), Pointee(0), Pointee(1)));
}

TEST_F(PointerListTest, isEmptyAfterItIsMovedFrom)
{
    for (const std::size_t count : {1u, 3u}) {
        add(count);
        const PointerList<int> moved = std::move(list);
        EXPECT_EQ(moved.size(), count);
        EXPECT_THAT(list, IsEmpty());
    }
}

} // namespace PointerListTest
