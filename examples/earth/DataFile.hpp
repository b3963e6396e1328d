#pragma once

#include <earth/Export.hpp>

#include <string>

namespace Earth {

/// Returns \p name if something has that name, else the first file of that name in the data
/// folders of the program, else \p name. Prints nothing, unlike
/// `Orla::CommandLineParser::resolvePath`.
EARTH_API std::string findData(const std::string& name);

} // namespace Earth
