#pragma once

#include <tarn/libraries/LibraryFiles.hpp>
#include <tarn/types/TypeCatalogue.hpp>

#include <string>
#include <vector>

// Reports on types and libraries: text for people, JSON for programs. The JSON is valid
// UTF-8 even if names are not, has a fixed key order, and ends with a newline.

namespace Tarn {

/// Returns the output of `tarn types`: one line per type.
std::string typeListText(const std::vector<ValueTypeDescription>& values,
                         const std::vector<ObjectTypeDescription>& objects);
std::string typeListJson(const std::vector<ValueTypeDescription>& values,
                         const std::vector<ObjectTypeDescription>& objects);

/// Returns the output of `tarn objects` and `tarn describe`: one section per type, with all
/// details.
std::string descriptionText(const std::vector<ValueTypeDescription>& values,
                            const std::vector<ObjectTypeDescription>& objects);
std::string descriptionJson(const std::vector<ValueTypeDescription>& values,
                            const std::vector<ObjectTypeDescription>& objects);
std::string objectListJson(const std::vector<ObjectTypeDescription>& objects);

/// Returns the output of `tarn libraries`.
std::string libraryListText(const std::vector<LibraryFile>& files);
std::string libraryListJson(const std::vector<LibraryFile>& files);

} // namespace Tarn
