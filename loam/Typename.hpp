#pragma once

#include <loam/Export.hpp>

#include <string>
#include <typeinfo>

// The names under which programs find types: one thread-safe table for the whole process. It
// holds only copies, so a library whose types are in it can be unloaded.

namespace Loam {

/// Returns the name of a type for programs, never empty: the name that was set, or else its
/// plain C++ name without namespaces: "VTime", "string", "StrongPtr<VAction>".
///
/// Names are unique: if another type already has the plain name, the name is qualified with
/// all its scopes ("Other::VTime") and numbered if that is not enough ("Other::VTime #2"). A
/// type keeps its name until setTypename, unsetTypename or releaseTypename changes it.
LOAM_API std::string Typename(const std::type_info& type);

/// Returns the C++ name of a type with all its scopes, "Orla::VTime". Types local to different
/// source files may share it.
LOAM_API std::string qualifiedTypename(const std::type_info& type);

/// Sets the name of a type and frees its former name.
///
/// Returns false and changes nothing if the name is empty or was set for another
/// type. A type that has the name by default loses it and gets another one at the next
/// call of Typename.
LOAM_API bool setTypename(const std::type_info& type, const std::string& name);

/// Removes the name that was set for a type; libraries call it before they are
/// unloaded. Returns false if no name was set.
LOAM_API bool unsetTypename(const std::type_info& type);

/// Frees the default name of a type that is local to a source file; libraries call it before
/// they are unloaded. Such a type is another one when its library is loaded again, and then
/// gets the same name. Has no effect on other types, nor on a name that was set. If memory runs
/// out, the type keeps its name.
LOAM_API void releaseTypename(const std::type_info& type) noexcept;

} // namespace Loam
