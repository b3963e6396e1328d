#include <fathom/frustum/FrustumLanes.hpp>

namespace Orla {

std::size_t classifyFrustumAvx512(const FrustumPlane* planes, std::size_t count, std::int8_t* results)
{
    return classifyLanes<8>(planes, count, results);
}

} // namespace Orla
