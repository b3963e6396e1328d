#pragma once

#include <earth/Export.hpp>
#include <earth/Pixels.hpp>
#include <earth/Shapes.hpp>

#include <fathom/VCamera.hpp>

#include <gable/PhysicalSpace.hpp>

#include <array>
#include <optional>
#include <vector>

namespace Earth {

/// Projects the Earth's surface, the ellipsoid WGS 84, in a camera's perspective.
///
/// A place is visible if its direction to the camera and the outward normal of the
/// ellipsoid form an angle of less than 90 degrees, and if it lies in the view. Shapes
/// extend slightly beyond the view, to keep outlines off its edge.
class EARTH_API GlobeProjection {
public:
    /// The camera's coordinates are geocentric metres. Its field of view spans the height
    /// of \p view.
    /// \throw std::invalid_argument for a camera that cannot see the Earth from outside:
    /// not finite, inside or too far from the ellipsoid, at its own focus, with an up
    /// direction along the view, or with an angle not between 0 and 180 degrees.
    GlobeProjection(const Orla::VCamera& camera, const Rectangle& view);

    /// Returns true if the Earth hides a place on its surface.
    bool isHidden(const LonLat& place) const noexcept;

    /// Returns the pixel of a place, or nothing if the place is not visible.
    std::optional<Pixel> seen(const LonLat& place) const noexcept;

    /// Returns the visible part of a ring's inside, cut at the horizon and closed along
    /// it.
    std::vector<std::vector<Pixel>> seen(const Ring& ring) const;

    /// Returns the visible parts of a line.
    std::vector<std::vector<Pixel>> seenLine(const Line& line) const;

    /// Returns the horizon, the outline of the Earth's disc; empty if it is not in the view.
    std::vector<Pixel> disc() const;

    struct Circle {
        Pixel center;
        double radius = 0;
    };

    /// Returns the smallest circle around the horizon's centre that contains the disc.
    /// Returns nothing if the horizon is not entirely in front of the camera.
    std::optional<Circle> circleAroundDisc() const;

private:
    using point = Gyre::PhysicalSpace::point;
    using vector = Gyre::PhysicalSpace::vector;

    struct Plane {
        vector normal; // in the camera's axes; the dot product is not negative in the view
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
    double m_scale; // pixels per unit of the tangent
    std::array<Plane, 4> m_sides;

    // On the unit sphere the horizon is a circle.
    vector m_eye;
    vector m_axis;     // towards the eye, of length 1
    vector m_right;    // with m_above spans the plane of the circle,
    vector m_above;    // counterclockwise as seen from the eye
    double m_distance; // of that plane from the Earth's centre
    double m_radius;
};

} // namespace Earth
