#include <fathom/frustum/FrustumLanes.hpp>

namespace Orla {

std::size_t classifyFrustumAvx2(const FrustumPlane* planes, std::size_t count, std::int8_t* results)
{
    return classifyLanes<4>(planes, count, results);
}

} // namespace Orla
