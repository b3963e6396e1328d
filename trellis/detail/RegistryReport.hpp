#pragma once

#include <string>
#include <typeinfo>

namespace Orla::Detail {

/// Returns the name of \p type and the library of its creator, for reports.
std::string ownerOf(const std::type_info& type, const std::type_info& creator);

/// Returns the plain name of the library of \p creator: "quakes" for the file quakes.so.
std::string libraryOf(const std::type_info& creator);

/// Returns true if \p holder is empty. Otherwise warns that \p name is taken by \p holder and
/// refused for \p owner, and returns false.
bool acceptedOrReported(const char* kind, const std::string& name, const std::string& owner, const std::string& holder);

} // namespace Orla::Detail
