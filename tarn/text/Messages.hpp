#pragma once

#include <loam/StringUtil.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Pieces of messages.

namespace Tarn {

using Loam::StringUtil::escaped;
using Loam::StringUtil::printable;

/// As `printable`, between double quotes.
std::string inQuotes(std::string_view text);

/// "1 fault", "2 faults".
std::string counted(std::size_t count, const std::string& noun);

/// The one of \p candidates that \p name is probably a misspelling of: few
/// letters wrong, missing, too many or swapped, or another case. Empty if there
/// is none.
std::string nearest(std::string_view name, const std::vector<std::string>& candidates);

/// The end of a message about an unknown \p name: `; did you mean "X"?`, or the
/// candidates if there are only a few, or nothing.
std::string insteadOf(std::string_view name, const std::vector<std::string>& candidates);

} // namespace Tarn
