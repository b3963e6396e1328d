#pragma once

#include <trellis/Export.hpp>

#include <loam/StrongPtr.hpp>

namespace Orla {

using Loam::StrongPtr;
using Loam::WeakPtrImpl;

/// Counted root of managed objects, slot containers and all mix-ins that join
/// them; every class derives from it virtually.
class TRELLIS_API VManagedObjectBase : public Loam::ReferenceBase<VManagedObjectBase> {
public:
    ~VManagedObjectBase() override;

protected:
    VManagedObjectBase() = default;
};

} // namespace Orla
