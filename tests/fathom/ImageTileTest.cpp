#include <fathom/ImageTile.hpp>

#include <fathom/VValueType.hpp>

#include <gtest/gtest.h>

#include <type_traits>

namespace ImageTileTest {

using namespace Orla;

static_assert(noexcept(ImageTile().size) && std::is_copy_assignable_v<ImageTile>);

namespace {

using Size = ImageTile::Size;

// This declaration makes tiles values and inputs, which fathom does not. ValueLaws do
// not apply: the text is the same for all tiles.
const VValueType<ImageTile> tileType;

class ImageTileTest : public testing::Test {
protected:
    const std::size_t m_before = Loam::ChunkBase::TotalMemsize;
    StrongPtr<ChunkBase> m_primary = Loam::makeStrong<Loam::Chunk<float>>(100u);
    StrongPtr<ChunkBase> m_secondary = Loam::makeStrong<Loam::Chunk<char>>(50u);
    const ImageTile m_tile{{8, 6}, m_primary, m_secondary, {2, 3}, {4, 5}};
};

} // namespace

TEST_F(ImageTileTest, isEmptyAndSpansOneByOneByDefault)
{
    const ImageTile tile;
    EXPECT_EQ(tile.size, (Size{0, 0}));
    EXPECT_FALSE(tile.primaryChunk);
    EXPECT_FALSE(tile.secondaryChunk);
    EXPECT_EQ(tile.offset, (Size{0, 0}));
    EXPECT_EQ(tile.span, (Size{1, 1}));
}

TEST_F(ImageTileTest, storesItsConstructorArguments)
{
    EXPECT_EQ(m_tile.size, (Size{8, 6}));
    EXPECT_EQ(m_tile.primaryChunk, m_primary);
    EXPECT_EQ(m_tile.secondaryChunk, m_secondary);
    EXPECT_EQ(m_tile.offset, (Size{2, 3}));
    EXPECT_EQ(m_tile.span, (Size{4, 5}));
    EXPECT_EQ(m_primary.referenceBlock()->strongCount(), 2u);
    EXPECT_EQ(m_secondary.referenceBlock()->strongCount(), 2u);
}

TEST_F(ImageTileTest, intentionallySpansOneByOneInACopy)
{
    const ImageTile copy(m_tile);
    EXPECT_EQ(copy.span, (Size{1, 1}));
    EXPECT_EQ(copy.size, m_tile.size);
    EXPECT_EQ(copy.offset, m_tile.offset);
    EXPECT_EQ(copy.primaryChunk, m_primary);
    EXPECT_EQ(copy.secondaryChunk, m_secondary);
}

TEST_F(ImageTileTest, keepsTheSpanWhenItIsAssigned)
{
    ImageTile assigned;
    assigned = m_tile;
    EXPECT_EQ(assigned, m_tile);
    EXPECT_EQ(assigned.span, (Size{4, 5}));
}

TEST_F(ImageTileTest, isEqualOnlyIfAllFieldsAreEqual)
{
    ImageTile tiles[6];
    for (ImageTile& tile : tiles)
        tile = m_tile;
    tiles[1].size[1] = 7;
    tiles[2].primaryChunk = m_secondary;
    tiles[3].secondaryChunk = nullptr;
    tiles[4].offset[0] = 0;
    tiles[5].span[0] = 1;
    for (const ImageTile& tile : tiles)
        EXPECT_EQ(tile == m_tile, &tile == tiles);
}

TEST_F(ImageTileTest, releasesItsChunks)
{
    EXPECT_GT(Loam::ChunkBase::TotalMemsize, m_before);
    {
        const ImageTile last{{1, 1}, Loam::makeStrong<Loam::Chunk<int>>(10u), nullptr, {0, 0}, {1, 1}};
        const ImageTile shares(last);
        EXPECT_EQ(shares.primaryChunk.referenceBlock()->strongCount(), 2u);
        EXPECT_EQ(Loam::ChunkBase::TotalMemsize, m_before + 100 * sizeof(float) + 50 + 10 * sizeof(int));
    }
    EXPECT_EQ(Loam::ChunkBase::TotalMemsize, m_before + 100 * sizeof(float) + 50);
}

TEST_F(ImageTileTest, hasTheSameTextForAllTiles)
{
    EXPECT_EQ(VValueTrait<ImageTile>::Text(m_tile), "A Frame buffer.");
    EXPECT_EQ(VValueTrait<ImageTile>::Text(ImageTile()), "A Frame buffer.");
}

TEST_F(ImageTileTest, acceptsEveryTextAndStaysUnchanged)
{
    ImageTile tile;
    tile = m_tile;
    for (const char* text : {"", "A Frame buffer.", "8x6", "nonsense"}) {
        EXPECT_TRUE(VValueTrait<ImageTile>::setValueFromText(tile, text));
        EXPECT_TRUE(VInputValueTrait<ImageTile>::setValueFromText(tile, text));
        EXPECT_EQ(tile, m_tile) << text;
    }
    VInputValueTrait<ImageTile>::init(tile);
    EXPECT_EQ(tile, m_tile);
}

TEST_F(ImageTileTest, canBeHeldByAValue)
{
    const StrongPtr<VTypedValueBase<ImageTile>> value(Loam::makeStrong<VValue<ImageTile>>(m_tile));
    ImageTile read;
    EXPECT_TRUE(value->getValue(read));
    EXPECT_EQ(read.primaryChunk, m_primary);
    EXPECT_EQ(read.span, (Size{1, 1})) << "it was copied into the value";

    EXPECT_TRUE(value->setValue(m_tile));
    EXPECT_TRUE(value->getValue(read));
    EXPECT_EQ(read, m_tile);

    bool ok = false;
    const StrongPtr<VValueBase> made = VValueCreator::createValue("ImageTile", "any text", ok);
    EXPECT_TRUE(ok);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->getType(), typeid(ImageTile));
    EXPECT_EQ(made->Text(), "A Frame buffer.");
}

} // namespace ImageTileTest
