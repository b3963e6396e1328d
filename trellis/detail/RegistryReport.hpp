#pragma once

#include <string>
#include <typeinfo>

namespace Orla::Detail {

/// The name of \p type and the library that brings its creator, for reports.
std::string ownerOf(const std::type_info& type, const std::type_info& creator);

/// True if \p holder is empty. Otherwise warns that \p owner wanted \p name,
/// which \p holder has, and returns false.
bool acceptedOrReported(const char* kind, const std::string& name, const std::string& owner, const std::string& holder);

} // namespace Orla::Detail
