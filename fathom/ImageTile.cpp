#include <fathom/ImageTile.hpp>

#include <trellis/VTypeLabel.hpp>

namespace Orla {

ImageTile::ImageTile(const Size& theSize, const StrongPtr<ChunkBase, ChunkBase>& primary,
                     const StrongPtr<ChunkBase, ChunkBase>& secondary, const Size& theOffset, const Size& theSpan)
    : size{theSize}, primaryChunk{primary}, secondaryChunk{secondary}, offset{theOffset}, span{theSpan}
{
}

ImageTile::ImageTile(const ImageTile& other)
    : size{other.size}, primaryChunk{other.primaryChunk}, secondaryChunk{other.secondaryChunk}, offset{other.offset}
{
}

ImageTile& ImageTile::operator=(const ImageTile& other) = default;

ImageTile::~ImageTile() = default;

std::string VValueTrait<ImageTile>::Text(const ImageTile&)
{
    return "A Frame buffer.";
}

bool VValueTrait<ImageTile>::setValueFromText(ImageTile&, const std::string&)
{
    return true;
}

void VInputValueTrait<ImageTile>::init(ImageTile&)
{
}

bool VInputValueTrait<ImageTile>::setValueFromText(ImageTile&, const std::string&)
{
    return true;
}

namespace {

const VTypeLabel imageTileLabel{typeid(ImageTile), "image tile"};

} // namespace

} // namespace Orla
