#include <trellis/VObserver.hpp>

namespace Orla {

VObserver::~VObserver() = default;

void VObserver::startedWaiting(const VObject&) noexcept
{
}

void VObserver::stoppedWaiting(const VObject&) noexcept
{
}

} // namespace Orla
