#include <tarn/run/Reach.hpp>

#include <cstddef>
#include <unordered_set>
#include <utility>

namespace Tarn {

using Orla::StrongPtr;

std::vector<StrongPtr<Orla::VObject>> reachedFrom(std::vector<StrongPtr<Orla::VObject>> objects)
{
    std::vector<StrongPtr<Orla::VObject>> reached;
    std::unordered_set<const Orla::VObject*> known;
    const auto add = [&](const StrongPtr<Orla::VObject>& object) {
        if (object && known.insert(object.get()).second)
            reached.push_back(object);
    };
    for (const StrongPtr<Orla::VObject>& object : objects)
        add(object);
    for (std::size_t next = 0; next < reached.size(); ++next) {
        const StrongPtr<Orla::VObject> source = reached[next];
        for (const StrongPtr<Orla::VSlot>& output : source->outputs()) {
            const auto& readers = output->parameter()->readers();
            for (std::size_t i = 0; i < readers.size(); ++i) {
                Orla::VSlotContainer* const container = readers[i]->container();
                Orla::VObject* const reader = container ? container->object() : nullptr;
                if (reader && readers[i] != output.get())
                    add(Loam::WeakPtrImpl<Orla::VObject>(reader).lock());
            }
        }
    }
    return reached;
}

} // namespace Tarn
