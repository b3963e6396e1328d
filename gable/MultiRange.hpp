#pragma once

#include <gable/Export.hpp>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

namespace Gyre {

/// Ranges of a value with several components: the lower and upper bound of each
/// component in turn.
class GABLE_API MultiRange {
public:
    /// Creates an object without ranges.
    MultiRange() = default;

    explicit MultiRange(std::vector<double> bounds) noexcept;

    /// Takes the bounds in order. Implicit, so a function that takes ranges accepts `{0, 1}`.
    MultiRange(std::initializer_list<double> bounds);

    /// Reads an optional "[" and numbers separated by ";" or ",". Stops without an error
    /// at the first text that is not a number and keeps the numbers before it.
    explicit MultiRange(const std::string& text);

    std::size_t size() const noexcept { return m_bounds.size(); }
    bool empty() const noexcept { return m_bounds.empty(); }

    const double* begin() const noexcept { return m_bounds.data(); }
    const double* end() const noexcept { return m_bounds.data() + m_bounds.size(); }

    /// \pre \p index is less than `size()`.
    double operator[](std::size_t index) const noexcept { return m_bounds[index]; }

    friend bool operator==(const MultiRange&, const MultiRange&) = default;

private:
    std::vector<double> m_bounds;
};

} // namespace Gyre
