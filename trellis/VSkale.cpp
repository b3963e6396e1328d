#include <trellis/VSkale.hpp>

namespace Orla {

VSkale::VSkale() = default;
VSkale::~VSkale() = default;

} // namespace Orla
