#include <loam/Chunk.hpp>

namespace Loam {

std::atomic<std::size_t> ChunkBase::TotalMemsize{0};

ChunkBase::~ChunkBase() = default;

template class LOAM_TEMPLATE TypedChunk<double>;
template class LOAM_TEMPLATE TypedChunk<float>;
template class LOAM_TEMPLATE TypedChunk<short>;
template class LOAM_TEMPLATE TypedChunk<int>;
template class LOAM_TEMPLATE TypedChunk<long long>;

} // namespace Loam
