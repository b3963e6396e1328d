#pragma once

#include <cstddef>
#include <vector>

/// Returns the area to the left of a ring in the plane. \p x and \p y return the coordinates
/// of its points.
template<class Ring, class X, class Y>
double signedArea(const Ring& ring, X x, Y y)
{
    double doubled = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const auto& a = ring[i];
        const auto& b = ring[(i + 1) % ring.size()];
        doubled += x(a) * y(b) - x(b) * y(a);
    }
    return doubled / 2;
}

/// Returns true if an odd number of rings enclose a place in the plane.
template<class Ring, class X, class Y>
bool evenOdd(const std::vector<Ring>& rings, double placeX, double placeY, X x, Y y)
{
    bool isInside = false;
    for (const Ring& ring : rings) {
        for (std::size_t i = 0; i < ring.size(); ++i) {
            const auto& a = ring[i];
            const auto& b = ring[(i + 1) % ring.size()];
            if ((y(a) > placeY) != (y(b) > placeY) && placeX < x(a) + (x(b) - x(a)) * (placeY - y(a)) / (y(b) - y(a)))
                isInside = !isInside;
        }
    }
    return isInside;
}
