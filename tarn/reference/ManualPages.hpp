#pragma once

#include <tarn/types/TypeCatalogue.hpp>

#include <functional>
#include <string>
#include <vector>

namespace Tarn {

/// Writes the files of a manual: an index, a page for each object type and for each value type
/// that is registered or used, both in HTML and in Markdown, a drawing of each object type, and
/// the style of the HTML pages. Calls \p write with the name and the content of each file; the
/// index comes last. The files are valid UTF-8 and refer to each other by relative links. Their
/// total size grows with the number of types, not with its square. The same types give the same
/// files.
/// \throw std::runtime_error if a drawing fails; what \p write throws.
void writeManual(const std::vector<ValueTypeDescription>& values, const std::vector<ObjectTypeDescription>& objects,
                 const std::function<void(const std::string& file, const std::string& content)>& write);

} // namespace Tarn
