#pragma once

#include <trellis/VManagedObject.hpp>

#include <vector>

namespace Tarn {

/// The objects of all levels in the registry of the process, in its order.
std::vector<Orla::StrongPtr<Orla::VManagedObject>> announcedObjects();

/// Takes them all out, the last one first.
void removeAnnouncedObjects();

} // namespace Tarn
