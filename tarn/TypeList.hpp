#pragma once

#include <string>

namespace Tarn {

/// The registered value types, each with a note whether inputs of it can be made,
/// and the registered object types with the files of their libraries.
std::string typeList();

} // namespace Tarn
