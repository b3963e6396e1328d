#pragma once

#include <trellis/VObject.hpp>

#include <vector>

namespace Tarn {

/// The actions that tell objects how far a run is: outputs of the announced objects
/// whose preferences contain "run".
class RunActions {
public:
    /// A network may have none.
    static RunActions find();

    /// Emits what goes after each step; true if somebody may have become due.
    bool emitStepped(const Orla::StrongPtr<Orla::ValuePool>& pool) const { return emit(m_stepped, pool); }

    /// Emits what goes once, after the last step.
    bool emitFinished(const Orla::StrongPtr<Orla::ValuePool>& pool) const { return emit(m_finished, pool); }

private:
    using Outputs = std::vector<Orla::StrongPtr<Orla::VSlot>>;

    static bool emit(const Outputs& outputs, const Orla::StrongPtr<Orla::ValuePool>& pool);

    Outputs m_stepped;
    Outputs m_finished;
};

} // namespace Tarn
