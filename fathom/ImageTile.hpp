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

/// A piece of a frame buffer. Its pixels are in two chunks of memory, which tiles may share.
///
/// A copied tile spans (1,1), an assigned one keeps its span. A tile that is passed or returned
/// by value, and a value that a pool copies from the initial value, is copied; `setValue`,
/// `getValue` and the operators of outputs assign.
class FATHOM_API ImageTile {
public:
    /// A pair of pixel counts.
    using Size = Gyre::FixedArray<std::int32_t, 2>;

    ImageTile() = default;
    ImageTile(const Size& theSize, const StrongPtr<ChunkBase, ChunkBase>& primary,
              const StrongPtr<ChunkBase, ChunkBase>& secondary, const Size& theOffset, const Size& theSpan);

    /// Copies everything except the span; the span of the copy is (1,1). Moving copies, too.
    ImageTile(const ImageTile& other);

    /// Copies everything, including the span.
    ImageTile& operator=(const ImageTile& other);

    ~ImageTile();

    /// Compares all members; compares chunks by identity, not by their pixels.
    friend bool operator==(const ImageTile&, const ImageTile&) = default;

    Size size{0, 0};
    StrongPtr<ChunkBase, ChunkBase> primaryChunk;
    StrongPtr<ChunkBase, ChunkBase> secondaryChunk;
    Size offset{0, 0};
    Size span{1, 1};
};

/// The text of a tile is a fixed description; pixels have no text form.
template<>
struct FATHOM_API VValueTrait<ImageTile> {
    /// Returns the same text for every tile.
    static std::string Text(const ImageTile& tile);

    /// Accepts every text and changes nothing.
    static bool setValueFromText(ImageTile& tile, const std::string& text);
};

template<>
struct FATHOM_API VInputValueTrait<ImageTile> {
    /// Does nothing.
    static void init(ImageTile& tile);

    /// Accepts every text and changes nothing.
    static bool setValueFromText(ImageTile& tile, const std::string& text);
};

} // namespace Orla
