#pragma once

#include <loam/Export.hpp>

#include <string>
#include <typeinfo>

// The names under which users meet types: one table for the whole process, safe
// to use from several threads. It keeps copies alone, so a library whose types
// are in it can be unloaded.

namespace Loam {

/// The name of a type for people, never empty: the one that was set or else its
/// plain C++ name, without namespaces, default template arguments and the like:
/// "VTime", "string", "map<string,int>".
///
/// No two types have the same name: where the plain one belongs to another type
/// already, the name is as qualified as it must be ("Other::VTime"), with a
/// number if that is not enough ("Other::VTime #2"). A type keeps its name until
/// setTypename or unsetTypename changes it.
LOAM_API std::string Typename(const std::type_info& type);

/// Names a type, or names it anew, which frees its former name.
///
/// Returns false, and changes nothing, if the name is empty or was set for
/// another type. A type that has the name only because its plain name is the
/// same loses it, and finds another one when it is asked for next.
LOAM_API bool setTypename(const std::type_info& type, const std::string& name);

/// Takes back the name that was set for a type, as a library does that is going
/// to be unloaded. Returns false if none was.
LOAM_API bool unsetTypename(const std::type_info& type);

} // namespace Loam
