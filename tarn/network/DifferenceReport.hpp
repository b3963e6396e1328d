#pragma once

#include <tarn/network/NetworkDifferences.hpp>

#include <string>
#include <vector>

// Reports on the differences between two networks: text for people, JSON for programs.

namespace Tarn {

/// The files of the networks as the user wrote them.
struct ComparedFiles {
    std::string before;
    std::string after;
};

/// Returns one line per difference, `FILE:LINE:COLUMN: MESSAGE`, without control characters. The
/// place is the one in the second file unless only the first mentions it.
std::string differencesText(const ComparedFiles& files, const std::vector<NetworkDifference>& differences);

/// Returns the differences as JSON, which ends with a newline, has a fixed key order and is
/// valid UTF-8 even if names are not. \p unknown lists what could only be compared as text.
std::string differencesJson(const ComparedFiles& files, const std::vector<NetworkDifference>& differences,
                            const std::vector<std::string>& unknown);

} // namespace Tarn
