#pragma once

#include <earth/Export.hpp>

#include <string>

namespace Earth {

/// Returns the instant \p seconds after 1970-01-01T00:00:00Z in ISO 8601, rounded to the
/// millisecond: "2018-01-31T00:00:00Z", "1969-12-31T23:59:59.999Z".
///
/// Years before 0 and after 9999 have a sign and six digits. For NaN and for instants
/// outside the years -32767 to 32767, the text begins with "no calendar date".
EARTH_API std::string utcText(double seconds);

} // namespace Earth
