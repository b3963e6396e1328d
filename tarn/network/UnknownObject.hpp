#pragma once

#include <tarn/network/NetworkFile.hpp>

#include <toml++/toml.h>

namespace Tarn {

/// Keeps the content of an object whose type no library has, so that it can be written again:
/// fills `kept` and `texts` of \p object from \p table, which is not checked further. Adds a
/// fault for a value that is nested too deeply to be written.
void keepUnknown(NetworkFile::Object& object, const toml::table& table, Faults& faults);

} // namespace Tarn
