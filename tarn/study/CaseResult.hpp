#pragma once

#include <tarn/Export.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

/// The outcome of one case of a study.
struct TARN_API CaseResult {
    std::uint64_t number = 0;

    /// The texts of the network's columns after each completed step; nothing for a cell whose
    /// object failed or waits.
    std::vector<std::vector<std::optional<std::string>>> rows{};

    bool hasFailed = false;
    bool isCancelled = false; ///< the evaluation was cancelled, so the case is not complete

    /// Why the case failed, and what objects warn of: lines without line breaks.
    std::vector<std::string> messages{};

    /// The outputs of `StudyOptions::printed`, one line each.
    std::vector<std::string> printed{};

    friend bool operator==(const CaseResult&, const CaseResult&) = default;
};

} // namespace Tarn
