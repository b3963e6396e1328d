#include <trellis/VFileObserver.hpp>

namespace Orla {

VFileObserver::~VFileObserver() = default;

} // namespace Orla
