#include <trellis/VManagedObjectBase.hpp>

namespace Orla {

VManagedObjectBase::~VManagedObjectBase() = default;

} // namespace Orla
