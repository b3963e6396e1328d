#pragma once

#include <fathom/Export.hpp>
#include <fathom/VInputValueTrait.hpp>

#include <gable/FixedArray.hpp>

#include <trellis/VValueTrait.hpp>

#include <loam/Chunk.hpp>

#include <cstdint>
#include <string>

namespace Orla {

using Loam::ChunkBase;
using Loam::StrongPtr;

/// A piece of a frame buffer; its pixels are in two chunks of memory that tiles
/// may share.
class FATHOM_API ImageTile {
public:
    /// Two counts of pixels.
    using Size = Gyre::FixedArray<std::int32_t, 2>;

    ImageTile() = default;
    ImageTile(const Size& theSize, const StrongPtr<ChunkBase, ChunkBase>& primary,
              const StrongPtr<ChunkBase, ChunkBase>& secondary, const Size& theOffset, const Size& theSpan);

    /// Everything but the span, which is (1,1) in the copy whatever it was.
    ImageTile(const ImageTile& other);

    /// Everything, the span included.
    ImageTile& operator=(const ImageTile& other);

    ~ImageTile();

    /// Same sizes, same chunks; the pixels are not looked at.
    friend bool operator==(const ImageTile&, const ImageTile&) = default;

    Size size{0, 0};
    StrongPtr<ChunkBase, ChunkBase> primaryChunk;
    StrongPtr<ChunkBase, ChunkBase> secondaryChunk;
    Size offset{0, 0};
    Size span{1, 1};
};

/// A tile is described, not written: its pixels do not go through text.
template<>
struct FATHOM_API VValueTrait<ImageTile> {
    /// The same for every tile.
    static std::string Text(const ImageTile& tile);

    /// Accepts every text and changes nothing.
    static bool setValueFromText(ImageTile& tile, const std::string& text);
};

template<>
struct FATHOM_API VInputValueTrait<ImageTile> {
    /// Changes nothing.
    static void init(ImageTile& tile);

    /// Accepts every text and changes nothing.
    static bool setValueFromText(ImageTile& tile, const std::string& text);
};

} // namespace Orla
