#pragma once

#include "Pixels.hpp"
#include "Shapes.hpp"

#include <fathom/VCamera.hpp>

#include <gable/PhysicalSpace.hpp>

#include <array>
#include <optional>
#include <vector>

namespace Quakes {

/// The Earth's surface, the ellipsoid WGS 84, as a camera sees it in perspective.
///
/// A place is seen if its direction to the camera makes less than 90 degrees with
/// the outward normal of the ellipsoid, and if it lies in the view. Of shapes, what
/// lies a little outside of the view is returned too, so that no outline runs along
/// its edge.
class GlobeProjection {
public:
    /// The camera's coordinates are geocentric metres; its angle fills \p view from
    /// top to bottom.
    /// \throw std::invalid_argument for a camera that cannot see the Earth from
    /// outside: not finite, inside the ellipsoid, standing in its focus, with its up
    /// direction along the view, or with an angle not between 0 and 180 degrees.
    GlobeProjection(const Orla::VCamera& camera, const Rectangle& view);

    /// Whether the Earth itself hides a place of its surface.
    bool isHidden(const LonLat& place) const noexcept;

    /// Where a place is seen; nothing if it is not.
    std::optional<Pixel> seen(const LonLat& place) const noexcept;

    /// The part of a ring's inside that is seen, cut at the horizon and closed along
    /// it.
    std::vector<std::vector<Pixel>> seen(const Ring& ring) const;

    /// The parts of a line that are seen.
    std::vector<std::vector<Pixel>> seenLine(const Line& line) const;

    /// The horizon: the outline of the Earth's disc. Empty if it is not in the view.
    std::vector<Pixel> disc() const;

    /// The circle around the horizon's centre that touches the disc from outside;
    /// nothing where the horizon is not wholly in front of the camera.
    struct Circle {
        Pixel center;
        double radius = 0;
    };
    std::optional<Circle> circleAroundDisc() const;

private:
    using point = Gyre::PhysicalSpace::point;
    using vector = Gyre::PhysicalSpace::vector;

    struct Plane {
        vector normal; // in the camera's axes; the view is where its product is not negative
    };

    double aboveHorizon(const point& onSphere) const noexcept;
    point onHorizon(double angle) const noexcept;
    double angleOnHorizon(const point& onSphere) const noexcept;
    point crossing(const point& from, const point& to) const noexcept;
    void walkAlongHorizon(std::vector<point>& ring, double from, double distance) const;
    vector inCamera(const point& onSphere) const noexcept;
    Pixel projected(const vector& inCamera) const noexcept;
    std::vector<Pixel> projectedRing(const std::vector<point>& ring) const;
    void appendProjectedLine(std::vector<std::vector<Pixel>>& lines, const std::vector<point>& line) const;
    std::vector<point> horizon() const;

    Orla::VCamera m_camera;
    std::array<double, 16> m_lookAt;
    Rectangle m_view;
    double m_scale; // pixels for each unit of the tangent
    std::array<Plane, 4> m_sides;

    // On the unit sphere the horizon is a circle.
    vector m_eye;
    vector m_axis;     // towards the eye, of length 1
    vector m_right;    // with m_above spans the plane of the circle,
    vector m_above;    // counterclockwise as seen from the eye
    double m_distance; // of that plane from the Earth's centre
    double m_radius;
};

} // namespace Quakes
