#include <loam/Chunk.hpp>

#include "support/Sanitizers.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace ChunkTest {

using namespace Loam;

static_assert(std::is_same_v<StrongPtr<TypedChunk<double>>, StrongPtr<TypedChunk<double>, ChunkBase>>);
static_assert(std::is_abstract_v<ChunkBase> && std::is_base_of_v<ChunkBase, Chunk<std::string>>);
static_assert(std::is_same_v<decltype(TypedChunkBase<int>::createNewChunk(1)), StrongPtr<TypedChunk<int>>>);

namespace {

// Checks that each test leaves the total of the process unchanged.
class ChunkTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(ChunkBase::TotalMemsize, m_start); }

    std::size_t added() const { return ChunkBase::TotalMemsize - m_start; }

private:
    std::size_t m_start = ChunkBase::TotalMemsize;
};

// Copying throws once `copiesLeft` is used up.
struct Fragile {
    Fragile() = default;
    Fragile(const Fragile& other) : text{other.text}
    {
        if (copiesLeft-- == 0)
            throw std::runtime_error{"no more copies"};
    }
    Fragile& operator=(const Fragile&) = default;

    std::string text = "long enough for a separate allocation";

    static inline int copiesLeft = 0;
};

struct alignas(256) Wide {
    double number = 0;
};

template<class T>
constexpr std::size_t limitOf = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(T);

template<class T>
void expectSizesBeyondTheAddressSpaceToThrow()
{
    // An unchecked multiplication would wrap the second size to 0 bytes.
    for (const std::size_t size : {limitOf<T> + 1, std::numeric_limits<std::size_t>::max() / sizeof(T) + 1,
                                   std::numeric_limits<std::size_t>::max()}) {
        SCOPED_TRACE(size);
        if (size == 0)
            continue; // no number of single bytes wraps
        EXPECT_THROW(makeStrong<Chunk<T>>(size, T{}), std::bad_alloc);
        EXPECT_THROW(makeStrong<TypedChunk<T>>(size), std::bad_alloc);
        EXPECT_THROW(TypedChunkBase<T>::createNewChunk(size), std::bad_alloc);
        EXPECT_THROW(TypedChunkBase<T>::createNewChunk(size, false), std::bad_alloc);
        EXPECT_THROW(ChunkAllocator<T>{}.allocate(size), std::bad_alloc);
    }
}

bool isAligned(const void* memory, std::size_t alignment)
{
    return reinterpret_cast<std::uintptr_t>(memory) % alignment == 0;
}

} // namespace

TEST_F(ChunkTest, holdsCopiesOfTheValue)
{
    const auto chunk = makeStrong<Chunk<std::string>>(3u, "value");
    ASSERT_EQ(chunk->size(), 3u);
    for (const std::string& element : *chunk)
        EXPECT_EQ(element, "value");
    (*chunk)[1] = "other";
    EXPECT_EQ(chunk->base_vector()[1], "other");
    EXPECT_EQ(chunk->data()[1], "other");
    EXPECT_EQ(chunk->data()[2], "value");
}

TEST_F(ChunkTest, startsWithZeroesWithoutAValue)
{
    const TypedChunk<int> chunk(100);
    EXPECT_EQ(std::accumulate(chunk.begin(), chunk.end(), 0), 0);
    EXPECT_EQ(chunk.size(), 100u);
}

TEST_F(ChunkTest, readsASingleNumberAsASizeEvenIfElementsAreNumbers)
{
    EXPECT_EQ(TypedChunk<long long>(5).size(), 5u);
    EXPECT_EQ((TypedChunk<long long>(2, 5)[1]), 5);
}

TEST_F(ChunkTest, countsEveryByteOfItsElementsWhileItLives)
{
    auto numbers = makeStrong<Chunk<double>>(1000u, 1.5);
    EXPECT_EQ(added(), 1000 * sizeof(double));
    auto more = TypedChunkBase<short>::createNewChunk(7);
    EXPECT_EQ(added(), 1000 * sizeof(double) + 7 * sizeof(short));
    numbers.reset();
    EXPECT_EQ(added(), 7 * sizeof(short));
    more.reset();
    EXPECT_EQ(added(), 0u);
}

TEST_F(ChunkTest, allocatesNoMemoryWhenItIsEmpty)
{
    const auto chunk = makeStrong<Chunk<double>>(0u, 1.0);
    EXPECT_EQ(chunk->size(), 0u);
    EXPECT_EQ(chunk->begin(), chunk->end());
    EXPECT_EQ(TypedChunkBase<float>::createNewChunk(0, false)->size(), 0u);
    EXPECT_EQ(added(), 0u);
}

TEST_F(ChunkTest, countsTheCapacityOfItsVector)
{
    const auto chunk = TypedChunkBase<float>::createNewChunk(0);
    for (int i = 0; i < 1000; ++i)
        chunk->base_vector().push_back(static_cast<float>(i));
    EXPECT_EQ(added(), chunk->base_vector().capacity() * sizeof(float));
    EXPECT_GE(added(), 1000 * sizeof(float));
    chunk->base_vector().resize(10);
    chunk->base_vector().shrink_to_fit();
    EXPECT_EQ(added(), 10 * sizeof(float));
    EXPECT_EQ((*chunk)[9], 9.0f);
}

TEST_F(ChunkTest, countsMovedElementsUntilTheyAreDestroyed)
{
    auto chunk = makeStrong<TypedChunk<int>>(50u, 3);
    {
        const TypedChunk<int>::Vector taken = std::move(chunk->base_vector());
        chunk.reset();
        EXPECT_EQ(taken.size(), 50u);
        EXPECT_EQ(added(), 50 * sizeof(int));
    }
    EXPECT_EQ(added(), 0u);
}

TEST_F(ChunkTest, countsNothingWhenCopyingTheValueThrows)
{
    for (const int copies : {0, 1, 9}) {
        SCOPED_TRACE(copies);
        Fragile::copiesLeft = copies;
        EXPECT_THROW(makeStrong<Chunk<Fragile>>(10u, Fragile{}), std::runtime_error);
        EXPECT_EQ(added(), 0u);
    }
    Fragile::copiesLeft = 10;
    EXPECT_EQ(makeStrong<Chunk<Fragile>>(10u, Fragile{})->size(), 10u);
}

TEST_F(ChunkTest, rejectsSizesBeyondTheAddressSpaceWithoutCountingThem)
{
    expectSizesBeyondTheAddressSpaceToThrow<double>();
    expectSizesBeyondTheAddressSpaceToThrow<short>();
    expectSizesBeyondTheAddressSpaceToThrow<char>();
    expectSizesBeyondTheAddressSpaceToThrow<std::string>();
    EXPECT_EQ(added(), 0u);
}

#if !defined(SANITIZED)
TEST_F(ChunkTest, countsNothingWhenTheAllocationFails)
{
    EXPECT_THROW(makeStrong<Chunk<double>>(limitOf<double>, 1.0), std::bad_alloc);
    EXPECT_THROW(TypedChunkBase<double>::createNewChunk(limitOf<double>, false), std::bad_alloc);
    EXPECT_THROW(TypedChunkBase<Wide>::createNewChunk(limitOf<Wide>), std::bad_alloc);
    EXPECT_EQ(added(), 0u);
}
#endif

TEST_F(ChunkTest, keepsItsElementsWhenGrowingFails)
{
    TypedChunk<Fragile> chunk;
    Fragile::copiesLeft = 1;
    chunk.base_vector().push_back(Fragile{});
    const std::size_t before = added();
    Fragile::copiesLeft = 3;
    EXPECT_THROW(chunk.base_vector().resize(8, Fragile{}), std::runtime_error);
    EXPECT_EQ(chunk.size(), 1u);
    EXPECT_EQ(added(), before);
}

TEST_F(ChunkTest, startsOnA64ByteBoundary)
{
    for (std::size_t size = 1; size < 40; ++size) {
        SCOPED_TRACE(size);
        EXPECT_TRUE(isAligned(makeStrong<Chunk<double>>(size, 1.0)->memory(), 64));
        EXPECT_TRUE(isAligned(TypedChunkBase<short>::createNewChunk(size)->memory(), 64));
        EXPECT_TRUE(isAligned(TypedChunkBase<float>::createNewChunk(size, false)->memory(), 64));
        EXPECT_TRUE(isAligned(makeStrong<Chunk<std::string>>(size, "")->memory(), 64));
    }
    static_assert(ChunkBase::Alignment == 64);
}

TEST_F(ChunkTest, respectsAWiderAlignmentOfItsElements)
{
    const auto chunk = makeStrong<Chunk<Wide>>(3u, Wide{2});
    EXPECT_TRUE(isAligned(chunk->data(), alignof(Wide)));
    EXPECT_TRUE(isAligned(&(*chunk)[1], alignof(Wide)));
    EXPECT_EQ((*chunk)[2].number, 2);
    EXPECT_EQ(added(), 3 * sizeof(Wide));
}

TEST_F(ChunkTest, exposesItsMemoryWithoutACopy)
{
    const StrongPtr<ChunkBase> chunk = makeStrong<Chunk<int>>(4u, 9);
    EXPECT_EQ(chunk->elementType(), typeid(int));
    EXPECT_EQ(chunk->elementSize(), sizeof(int));
    ASSERT_EQ(chunk->size(), 4u);
    static_cast<int*>(chunk->memory())[3] = 5;
    const StrongPtr<TypedChunk<int>> typed(chunk);
    ASSERT_TRUE(typed);
    EXPECT_EQ((*typed)[3], 5);
    EXPECT_EQ(std::as_const(*chunk).memory(), typed->data());
    EXPECT_FALSE(StrongPtr<TypedChunk<double>>(chunk)) << "the elements are not doubles";
}

TEST_F(ChunkTest, createsNewChunksOfDefaultElements)
{
    for (const bool initialise : {true, false}) {
        SCOPED_TRACE(initialise);
        const auto texts = TypedChunkBase<std::string>::createNewChunk(3, initialise);
        ASSERT_EQ(texts->size(), 3u);
        for (const std::string& text : *texts)
            EXPECT_EQ(text, "");
        const auto numbers = TypedChunkBase<long long>::createNewChunk(20, initialise);
        ASSERT_EQ(numbers->size(), 20u);
        EXPECT_EQ(numbers->base_vector().capacity(), 20u);
        std::iota(numbers->begin(), numbers->end(), 0);
        EXPECT_EQ(numbers->base_vector().back(), 19);
    }
    const auto zeroes = TypedChunkBase<double>::createNewChunk(64);
    EXPECT_EQ(std::accumulate(zeroes->begin(), zeroes->end(), 0.0), 0.0);
}

TEST_F(ChunkTest, countsExactlyWhenThreadsCreateChunksConcurrently)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (std::size_t size = 1; size < 2000; ++size)
                TypedChunkBase<int>::createNewChunk(size % 60, size % 2 == 0);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(added(), 0u);
}

TEST_F(ChunkTest, holdsTheElementsInBraces)
{
    const TypedChunk<double> chunk{1, 2.5, -3};
    EXPECT_EQ(std::vector<double>(chunk.begin(), chunk.end()), (std::vector<double>{1, 2.5, -3}));
    EXPECT_EQ(TypedChunk<std::size_t>{3}.size(), 1u) << "an element, not a size";
    const auto created = TypedChunk<int>::createNewChunk({4, 5});
    EXPECT_EQ(std::vector<int>(created->begin(), created->end()), (std::vector<int>{4, 5}));
    EXPECT_EQ(TypedChunk<int>::createNewChunk(2)->size(), 2u);
}

} // namespace ChunkTest
