#pragma once

#include <fathom/Export.hpp>
#include <fathom/VTime.hpp>

#include <trellis/Forward.hpp>

#include <loam/Result.hpp>
#include <loam/StrongPtr.hpp>

namespace Orla {

/// Mix-in for providers of the time that compute the interval and the step from inputs.
///
/// A host writes the time of each step to the `VTime` input of the object that provides the time.
/// It takes the interval and the step from that input, too, unless the object is a `VTimeSource`.
class FATHOM_API VTimeSource {
public:
    virtual ~VTimeSource();

    /// Returns the time in \p pool with the interval and the step that a host is to use, or the
    /// reason why the inputs do not describe them.
    virtual Loam::Result<VTime> steppedTime(const Loam::StrongPtr<ValuePool>& pool) const = 0;

protected:
    VTimeSource() = default;
    VTimeSource(const VTimeSource&) = default;
    VTimeSource& operator=(const VTimeSource&) = default;
};

} // namespace Orla
