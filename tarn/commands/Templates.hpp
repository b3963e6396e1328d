#pragma once

#include <string>
#include <vector>

namespace Tarn {

/// A file of the folder `templates`, which is compiled into the program.
struct Template {
    std::string name;
    std::string text;
};

/// Returns the files of a new library called "samplelibrary" with an object type "SampleObject".
const std::vector<Template>& libraryTemplates();

} // namespace Tarn
