#pragma once

#include "Grid.hpp"

#include <earth/Shapes.hpp>

#include <fathom/VValueType.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Rain {

/// A line along which the values of a grid equal a level.
struct Isoline {
    double level = 0;
    bool isClosed = false;
    Earth::Line places; ///< at least two; a closed line ends at the place where it begins

    friend bool operator==(const Isoline&, const Isoline&) = default;
};

/// Returns the isolines of a level, interpolated linearly along the sides of `Squares`, which
/// also defines saddles. They continue across the date line. An isoline is open only if it ends
/// at the border of the grid or at a missing value. Higher values are on its right if the rows
/// of the grid run southwards, otherwise on its left.
///
/// Longitudes lie from -180 to below 180.
std::vector<Isoline> isolinesOf(const Grid& grid, double level);

/// Returns the length of a line along great circles, in kilometres on a sphere with the mean
/// radius of the Earth.
double lengthOf(const Earth::Line& line);

/// Isolines of one or more levels. They never change, and copies share them.
///
/// Has no text form that can be read: isolines are always computed.
class IsolineSet {
public:
    IsolineSet() = default;
    explicit IsolineSet(std::vector<Isoline> lines)
        : m_lines{std::make_shared<const std::vector<Isoline>>(std::move(lines))}
    {
    }

    const std::vector<Isoline>& lines() const noexcept
    {
        static const std::vector<Isoline> none;
        return m_lines ? *m_lines : none;
    }

    friend bool operator==(const IsolineSet& a, const IsolineSet& b) noexcept
    {
        return a.m_lines == b.m_lines || a.lines() == b.lines();
    }

private:
    std::shared_ptr<const std::vector<Isoline>> m_lines;
};

} // namespace Rain

template<>
struct Orla::VValueTrait<Rain::IsolineSet> {
    /// Returns the number of isolines as a text: "2 isolines".
    static std::string Text(const Rain::IsolineSet& isolines)
    {
        const std::size_t count = isolines.lines().size();
        return std::to_string(count) + (count == 1 ? " isoline" : " isolines");
    }

    /// Refuses every text.
    static bool setValueFromText(Rain::IsolineSet&, const std::string&) { return false; }
};
