#pragma once

#include <trellis/Export.hpp>

#include <loam/StrongPtr.hpp>

namespace Orla {

using Loam::StrongPtr;
using Loam::WeakPtrImpl;

/// Reference-counted root of managed objects, slot containers and their mix-ins. All of them
/// derive from it virtually.
class TRELLIS_API VManagedObjectBase : public Loam::ReferenceBase<VManagedObjectBase> {
public:
    ~VManagedObjectBase() override;

protected:
    VManagedObjectBase() = default;
};

} // namespace Orla
