#include <tarn/libraries/AnnouncedObjects.hpp>

namespace Tarn {

using Orla::StrongPtr;

std::vector<StrongPtr<Orla::VManagedObject>> announcedObjects()
{
    std::vector<StrongPtr<Orla::VManagedObject>> objects;
    Orla::VManagedObject::forEachObject(
        [&objects](const StrongPtr<Orla::VManagedObject>& object) { objects.push_back(object); });
    return objects;
}

void removeAnnouncedObjects()
{
    for (auto objects = announcedObjects(); !objects.empty(); objects.pop_back())
        Orla::VManagedObject::remove(objects.back());
}

} // namespace Tarn
