#pragma once

#include <trellis/VObject.hpp>

#include <vector>

namespace Tarn {

/// The actions that notify objects of a run's progress: outputs of the announced objects
/// whose preferences contain "run".
class RunActions {
public:
    /// Finds these outputs; a network may have none.
    static RunActions find();

    /// Emits the actions for a completed step. Returns true if objects may have become due.
    bool emitStepped(const Orla::StrongPtr<Orla::ValuePool>& pool) const { return emit(m_stepped, pool); }

    /// Emits the actions for the end of the run, once, after the last step. Returns the same.
    bool emitFinished(const Orla::StrongPtr<Orla::ValuePool>& pool) const { return emit(m_finished, pool); }

private:
    using Outputs = std::vector<Orla::StrongPtr<Orla::VSlot>>;

    static bool emit(const Outputs& outputs, const Orla::StrongPtr<Orla::ValuePool>& pool);

    Outputs m_stepped;
    Outputs m_finished;
};

} // namespace Tarn
