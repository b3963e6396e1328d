#include <fathom/VTimeSource.hpp>

namespace Orla {

VTimeSource::~VTimeSource() = default;

} // namespace Orla
