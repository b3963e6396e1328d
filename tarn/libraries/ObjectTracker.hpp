#pragma once

#include <tarn/libraries/Libraries.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VObject.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

/// Tracks all objects announced since it was added as a notifier, and finds those that
/// outlive their network: their code must stay in memory.
class ObjectTracker final : public Orla::VActionNotifier {
public:
    ~ObjectTracker() override;

    void objectCreated(const Orla::StrongPtr<Orla::VManagedObject>& object, const Loam::InterfaceContainer& interfaces,
                       const Orla::StrongPtr<Orla::VObjectCreator>& creator) override;

    /// Records the parameters and values of the live objects, including values in \p pool.
    /// Call this before the network is destroyed.
    void countValues(const Orla::StrongPtr<Orla::ValuePool>& pool);

    /// Describes a recorded item that is still alive, or a creator that is still referenced.
    /// Returns nothing if everything was destroyed.
    std::optional<std::string> survivor() const;

    /// Unloads \p libraries, or issues a warning if anything survived, whose code must stay.
    void unloadUnlessInUse(Libraries& libraries) const;

private:
    void countParameter(const Orla::StrongPtr<Orla::VParameter>& parameter,
                        const Orla::StrongPtr<Orla::ValuePool>& pool);

    std::vector<Orla::WeakPtrImpl<Orla::VManagedObject>> m_objects;
    std::size_t m_nextPruning = 1024;
    std::vector<Orla::WeakPtrImpl<Orla::VParameter>> m_parameters;
    std::vector<Orla::WeakPtrImpl<Orla::VValueBase>> m_values;
};

} // namespace Tarn
