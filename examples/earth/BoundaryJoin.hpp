#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace Earth {

/// A part of a ring that the boundary of a region cuts. It lies inside the region and
/// begins and ends on the boundary.
template<class Point>
struct RingPiece {
    double entry = 0; ///< place on the boundary where the piece begins
    double exit = 0;  ///< place where it ends
    std::vector<Point> points;
};

/// Joins the pieces of one ring, whose inside is on its left, to closed rings.
///
/// Places on the boundary are numbers that increase counterclockwise from 0 to
/// \p period. Each piece continues from its exit counterclockwise along the boundary
/// to the nearest entry. `walk(ring, from, distance)` appends the points of the
/// boundary strictly between the two.
template<class Point, class Walk>
std::vector<std::vector<Point>> joinAlongBoundary(std::vector<RingPiece<Point>> pieces, double period, Walk walk)
{
    // Two ends at the same place of the ring may differ by rounding.
    const double rounding = period * 1e-12;
    const auto distance = [&](double from, double to) {
        const double ahead = to < from ? to - from + period : to - from;
        return ahead > period - rounding ? 0 : ahead;
    };

    std::vector<std::vector<Point>> rings;
    std::vector<bool> isUsed(pieces.size(), false);
    for (std::size_t first = 0; first < pieces.size(); ++first) {
        if (isUsed[first])
            continue;
        std::vector<Point> ring;
        std::size_t current = first;
        do {
            isUsed[current] = true;
            ring.insert(ring.end(), pieces[current].points.begin(), pieces[current].points.end());
            const double exit = pieces[current].exit;
            std::size_t next = first;
            for (std::size_t i = 0; i < pieces.size(); ++i) {
                if (!isUsed[i] && distance(exit, pieces[i].entry) < distance(exit, pieces[next].entry))
                    next = i;
            }
            walk(ring, exit, distance(exit, pieces[next].entry));
            current = next;
        } while (current != first);
        rings.push_back(std::move(ring));
    }
    return rings;
}

} // namespace Earth
