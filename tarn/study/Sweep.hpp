#pragma once

#include <tarn/Export.hpp>

#include <loam/Result.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace Tarn {

/// The inputs that a study varies and their texts in each case.
///
/// The cases are all combinations of the factors that were added. The last factor varies fastest,
/// as the innermost of nested loops. Cases are numbered from 0. Without factors there is one case.
///
/// Functions that return a `Result` change nothing if they fail.
class TARN_API Sweep {
public:
    /// The maximal number of cases. Larger numbers are usually mistakes.
    static constexpr std::uint64_t MostCases = 10'000'000;

    /// Adds the factor of one input, named by "OBJECT.SLOT", and its texts. Fails if the input
    /// already belongs to a factor, if \p texts is empty, or if the study would have too many cases.
    Loam::Result<void> add(const std::string& input, std::vector<std::string> texts);

    /// Adds a factor of several inputs that vary together: each row has one text per input. Fails
    /// as above, and if a row has another number of texts.
    Loam::Result<void> addRows(const std::vector<std::string>& inputs, std::vector<std::vector<std::string>> rows);

    /// Returns the names of all inputs, in the order of the factors.
    const std::vector<std::string>& inputs() const noexcept { return m_inputs; }

    std::uint64_t caseCount() const noexcept { return m_caseCount; }

    /// Returns the texts of the inputs in a case. \p number is less than `caseCount()`.
    std::vector<std::string> texts(std::uint64_t number) const;

    /// Inputs that vary together.
    struct Factor {
        std::size_t firstInput; ///< index of the first one
        std::vector<std::vector<std::string>> rows;
    };

    const std::vector<Factor>& factors() const noexcept { return m_factors; }

private:
    std::vector<std::string> m_inputs;
    std::vector<Factor> m_factors;
    std::uint64_t m_caseCount = 1;
};

} // namespace Tarn
