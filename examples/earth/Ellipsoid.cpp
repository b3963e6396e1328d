#include <earth/Ellipsoid.hpp>

#include <earth/Degree.hpp>

#include <algorithm>
#include <cmath>

namespace Earth {

using Gyre::PhysicalSpace;

namespace {

constexpr double semiMajorAxis = 6378137; // metres
constexpr double flattening = 1 / 298.257223563;
constexpr double semiMinorAxis = semiMajorAxis * (1 - flattening);
constexpr double squaredEccentricity = flattening * (2 - flattening);
constexpr double squaredSecondEccentricity = squaredEccentricity / (1 - squaredEccentricity);

struct Direction {
    double cosine;
    double sine;
};

// Returns the reduced latitude of the point of the ellipse nearest to a place at distance
// p from the axis and z above the equator. Neither is negative.
//
// The point is (a cosine, b sine) with cosine = a p / (t + a^2) and sine =
// b z / (t + b^2), for the largest t for which it lies on the ellipse. With
// q = (t + b^2) / b^2, the function below is convex and decreasing, so Newton's
// method converges to its zero from every start to the left of it.
Direction reducedLatitude(double p, double z) noexcept
{
    const double x = semiMajorAxis * p / (semiMinorAxis * semiMinorAxis);
    const double y = z / semiMinorAxis;
    const double c = squaredSecondEccentricity;
    double q = std::max(y, x - c);
    if (!(q > 0)) {
        // In the plane of the equator, near the centre: y and t + b^2 are both zero.
        const double cosine = x / c;
        return {cosine, std::sqrt((1 - cosine) * (1 + cosine))};
    }
    constexpr int most = 200;
    for (int i = 0; i < most; ++i) {
        const double cosine = x / (q + c);
        const double sine = y / q;
        const double value = cosine * cosine + sine * sine - 1;
        const double slope = -2 * (cosine * cosine / (q + c) + sine * sine / q);
        const double next = q - value / slope;
        if (!(next > q))
            break;
        q = next;
    }
    return {x / (q + c), y / q};
}

} // namespace

PhysicalSpace::point geocentric(double longitude, double latitude, double height) noexcept
{
    const double sine = std::sin(latitude * degree);
    // Radius of curvature in the prime vertical.
    const double normal = semiMajorAxis / std::sqrt(1 - squaredEccentricity * sine * sine);
    const double fromAxis = (normal + height) * std::cos(latitude * degree);
    return {fromAxis * std::cos(longitude * degree), fromAxis * std::sin(longitude * degree),
            (normal * (1 - squaredEccentricity) + height) * sine};
}

PhysicalSpace::point geographic(const PhysicalSpace::point& geocentric) noexcept
{
    const double p = std::hypot(geocentric.x(), geocentric.y());
    const double z = std::abs(geocentric.z());
    const Direction reduced = reducedLatitude(p, z);
    const double latitude = std::atan2(semiMajorAxis * reduced.sine, semiMinorAxis * reduced.cosine);
    const double sine = std::sin(latitude);
    const double height =
        p * std::cos(latitude) + z * sine - semiMajorAxis * std::sqrt(1 - squaredEccentricity * sine * sine);
    const double longitude = p == 0 ? 0 : std::atan2(geocentric.y(), geocentric.x()) / degree;
    return {longitude, (geocentric.z() < 0 ? -latitude : latitude) / degree, height};
}

PhysicalSpace::point plateCarree(const PhysicalSpace::point& geographic) noexcept
{
    return {semiMajorAxis * (geographic.x() * degree), semiMajorAxis * (geographic.y() * degree), geographic.z()};
}

PhysicalSpace::point fromPlateCarree(const PhysicalSpace::point& metres) noexcept
{
    return {metres.x() / semiMajorAxis / degree, metres.y() / semiMajorAxis / degree, metres.z()};
}

PhysicalSpace::point onUnitSphere(const PhysicalSpace::point& geocentric) noexcept
{
    return {geocentric.x() / semiMajorAxis, geocentric.y() / semiMajorAxis, geocentric.z() / semiMinorAxis};
}

PhysicalSpace::point fromUnitSphere(const PhysicalSpace::point& point) noexcept
{
    return {point.x() * semiMajorAxis, point.y() * semiMajorAxis, point.z() * semiMinorAxis};
}

} // namespace Earth
