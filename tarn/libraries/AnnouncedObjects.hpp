#pragma once

#include <trellis/VManagedObject.hpp>

#include <vector>

namespace Tarn {

/// Returns the registered objects of the current network, of all levels, in registry order.
std::vector<Orla::StrongPtr<Orla::VManagedObject>> announcedObjects();

/// Removes all of them, last one first.
void removeAnnouncedObjects();

} // namespace Tarn
