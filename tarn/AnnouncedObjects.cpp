#include <tarn/AnnouncedObjects.hpp>

#include <limits>
#include <utility>

namespace Tarn {

using Orla::StrongPtr;

std::vector<StrongPtr<Orla::VManagedObject>> announcedObjects()
{
    struct All final : Orla::VManagedObjectIterator {
        bool apply(const StrongPtr<Orla::VManagedObject>& object) override
        {
            objects.push_back(object);
            return true;
        }

        std::vector<StrongPtr<Orla::VManagedObject>> objects;
    } all;
    Orla::VManagedObject::traverse(all, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    return std::move(all.objects);
}

void removeAnnouncedObjects()
{
    for (auto objects = announcedObjects(); !objects.empty(); objects.pop_back())
        Orla::VManagedObject::remove(objects.back());
}

} // namespace Tarn
