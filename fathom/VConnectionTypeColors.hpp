#pragma once

#include <fathom/Export.hpp>

#include <string>
#include <typeinfo>

namespace Orla {

/// The colours in which a user interface draws connections, by the type of the values that
/// travel through them. One table per process.
class FATHOM_API VConnectionTypeColors {
public:
    /// Sets the colour of \p type to any text that the user interface understands.
    static void set(const std::type_info& type, const std::string& colour);

    /// Returns the colour of \p type, or the empty text if it has none.
    ///
    /// `int` and `double` are always "green": each access resets their colours, so another
    /// colour lasts only until the next access.
    static std::string get(const std::type_info& type);
};

} // namespace Orla

/// Names of render object properties.
namespace Tarn {

extern FATHOM_API const char* const renderobject_visibility;
extern FATHOM_API const char* const rendertime_contribution;

} // namespace Tarn
