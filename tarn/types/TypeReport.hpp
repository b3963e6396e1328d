#pragma once

#include <tarn/libraries/LibraryFiles.hpp>
#include <tarn/types/TypeCatalogue.hpp>

#include <string>
#include <vector>

// What there is to know of types and libraries, for people and, as JSON, for programs.
// The JSON is UTF-8 whatever names hold, has its keys in one order, and ends with a
// newline.

namespace Tarn {

/// A line a type: what `tarn types` prints.
std::string typeListText(const std::vector<ValueTypeDescription>& values,
                         const std::vector<ObjectTypeDescription>& objects);
std::string typeListJson(const std::vector<ValueTypeDescription>& values,
                         const std::vector<ObjectTypeDescription>& objects);

/// A piece a type, with all of it: what `tarn objects` and `tarn describe` print.
std::string descriptionText(const std::vector<ValueTypeDescription>& values,
                            const std::vector<ObjectTypeDescription>& objects);
std::string descriptionJson(const std::vector<ValueTypeDescription>& values,
                            const std::vector<ObjectTypeDescription>& objects);
std::string objectListJson(const std::vector<ObjectTypeDescription>& objects);

/// What `tarn libraries` prints.
std::string libraryListText(const std::vector<LibraryFile>& files);
std::string libraryListJson(const std::vector<LibraryFile>& files);

} // namespace Tarn
