#pragma once

#include <trellis/VConnectable.hpp>

namespace Orla {

/// Base of mix-ins that add slots to a processing object. They derive from it virtually, so
/// all mix-ins of an object share its slots.
class TRELLIS_API VSkale : public virtual VConnectable, public virtual VManagedObjectBase {
public:
    VSkale();
    ~VSkale() override;
};

} // namespace Orla
