#pragma once

#include <trellis/VObject.hpp>

#include <vector>

namespace Tarn {

/// Returns \p objects and all objects that read their outputs, directly or indirectly, each once.
std::vector<Orla::StrongPtr<Orla::VObject>> reachedFrom(std::vector<Orla::StrongPtr<Orla::VObject>> objects);

} // namespace Tarn
