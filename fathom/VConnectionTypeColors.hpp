#pragma once

#include <fathom/Export.hpp>

#include <string>
#include <typeinfo>

namespace Orla {

/// In which colour a user interface draws connections, by the type of the values
/// that travel through them. One table for the process.
class FATHOM_API VConnectionTypeColors {
public:
    /// Sets the colour of \p type, any text that the user interface understands.
    static void set(const std::type_info& type, const std::string& colour);

    /// The colour of \p type, empty if it has none.
    ///
    /// `int` and `double` are always "green": each access gives them that colour
    /// first, so that another one lasts only until the next access.
    static std::string get(const std::type_info& type);
};

} // namespace Orla

/// Names of render object properties.
namespace Tarn {

extern FATHOM_API const char* const renderobject_visibility;
extern FATHOM_API const char* const rendertime_contribution;

} // namespace Tarn
