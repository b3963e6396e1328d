#pragma once

#include <trellis/VActionNotifier.hpp>
#include <trellis/VObject.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Tarn {

/// Knows all objects that were announced since it was added as a notifier, and
/// finds those that outlive their network: their code must stay in memory.
class ObjectTracker final : public Orla::VActionNotifier {
public:
    ~ObjectTracker() override;

    void objectCreated(const Orla::StrongPtr<Orla::VManagedObject>& object, const Loam::InterfaceContainer& interfaces,
                       const Orla::StrongPtr<Orla::VObjectCreator>& creator) override;

    /// Notes the parameters and values of the objects alive, those in \p pool too;
    /// to be called before the network is let go.
    void countValues(const Orla::StrongPtr<Orla::ValuePool>& pool);

    /// Something noted that is still alive, or a creator that somebody still
    /// holds; the empty text if there is nothing of the kind.
    std::string survivor() const;

private:
    void countParameter(const Orla::StrongPtr<Orla::VParameter>& parameter,
                        const Orla::StrongPtr<Orla::ValuePool>& pool);

    std::vector<Orla::WeakPtrImpl<Orla::VManagedObject>> m_objects;
    std::size_t m_nextPruning = 1024;
    std::vector<Orla::WeakPtrImpl<Orla::VParameter>> m_parameters;
    std::vector<Orla::WeakPtrImpl<Orla::VValueBase>> m_values;
};

} // namespace Tarn
