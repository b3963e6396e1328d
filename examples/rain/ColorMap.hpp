#pragma once

#include <gable/ColorTypes.hpp>
#include <gable/MultiRange.hpp>

#include <cstddef>
#include <vector>

namespace Rain {

/// Colours for classes of values: one class below the first level, one between each two levels,
/// and one from the last level on. A level belongs to the class above it.
///
/// The colours run from sand for dry places through green to dark blue for wet ones. Lightness
/// decreases evenly, so a greyscale print keeps the order; marks in yellow, red and violet
/// differ from all of them.
class ColorMap {
public:
    using Color = Gyre::rgba_float_t;

    /// The colour of places without a value.
    static const Color unknown;

    /// \throw std::runtime_error as `levelsOf`.
    explicit ColorMap(const Gyre::MultiRange& levels);

    const std::vector<double>& levels() const noexcept { return m_levels; }

    /// Returns the colours of all classes, one more than there are levels.
    const std::vector<Color>& colors() const noexcept { return m_colors; }

    /// Returns the class of a number.
    std::size_t classOf(double value) const noexcept;

    /// Returns the colour of a number; `unknown` for NaN.
    Color operator()(double value) const noexcept;

private:
    std::vector<double> m_levels;
    std::vector<Color> m_colors;
};

} // namespace Rain
