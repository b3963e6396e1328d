#pragma once

#include <loam/StringUtil.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Building blocks of messages.

namespace Tarn {

using Loam::StringUtil::escaped;
using Loam::StringUtil::onOneLine;
using Loam::StringUtil::printable;

/// Returns \p text as `printable`, in double quotes.
std::string inQuotes(std::string_view text);

/// Returns, for example, "1 fault" or "2 faults".
std::string counted(std::size_t count, const std::string& noun);

/// Returns the candidate that \p name probably misspells: a few letters wrong, missing,
/// extra or swapped, or a difference in case. Returns an empty string if none is close.
std::string nearest(std::string_view name, const std::vector<std::string>& candidates);

/// Returns the end of a message about an unknown \p name: `; did you mean "X"?`, or the list
/// of candidates if there are only a few, or an empty string.
std::string insteadOf(std::string_view name, const std::vector<std::string>& candidates);

/// Returns the names in quotes: `"A", "B" or "C"`. Counts the names after the first eight.
std::string alternatives(const std::vector<std::string>& names);

} // namespace Tarn
