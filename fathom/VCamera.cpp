#include <fathom/VCamera.hpp>

#include <fathom/frustum/FrustumKernel.hpp>
#include <fathom/GyreFixedArray.hpp>

#include <trellis/VTypeLabel.hpp>

#include <loam/Numbers.hpp>
#include <loam/Scanner.hpp>

#include <cmath>

namespace Orla {

using Gyre::cross;
using Gyre::PhysicalSpace;

namespace {

double length(const PhysicalSpace::Coordinates& v) noexcept
{
    return std::sqrt(v.x() * v.x() + v.y() * v.y() + v.z() * v.z());
}

PhysicalSpace::vector timesReciprocalLength(const PhysicalSpace::vector& v) noexcept
{
    return v * (1 / length(v));
}

} // namespace

void VCamera::reset() noexcept
{
    position = {0, 1, 0};
    focus = {0, 0, 0};
    up = {0, 0, 1};
    fieldOfView = 45;
}

// The order of the operations affects the result: saved pictures are compared bit by bit.
void VCamera::untranslatedLookAt(double* M) const noexcept
{
    const PhysicalSpace::vector view = focus - position;
    const PhysicalSpace::vector above = PhysicalSpace::vector(up) / length(up);
    const PhysicalSpace::vector side = cross(view, above);
    const PhysicalSpace::vector trueUp = cross(side, view);
    const PhysicalSpace::vector d = timesReciprocalLength(view);
    const PhysicalSpace::vector s = timesReciprocalLength(side);
    const PhysicalSpace::vector v = timesReciprocalLength(trueUp);
    for (std::size_t column = 0; column < 3; ++column) {
        M[4 * column] = s[column];
        M[4 * column + 1] = v[column];
        M[4 * column + 2] = -d[column];
        M[4 * column + 3] = 0;
    }
    M[12] = 0;
    M[13] = 0;
    M[14] = 0;
    M[15] = 1;
}

std::array<double, 16> VCamera::untranslatedLookAt() const noexcept
{
    std::array<double, 16> M;
    untranslatedLookAt(M.data());
    return M;
}

void VCamera::translate(std::array<double, 16>& M) const noexcept
{
    const PhysicalSpace::point& e = position;
    for (std::size_t r = 0; r < 4; ++r)
        M[12 + r] = (M[12 + r] - M[8 + r] * e.z()) - (M[r] * e.x() + M[4 + r] * e.y());
}

std::string VValueTrait<VCamera>::Text(const VCamera& camera)
{
    return Text3(camera.position) + Text3(camera.focus) + Text3(camera.up)
           + VValueTrait<double>::Text(camera.fieldOfView);
}

// Reads the scanf format "{%lg,%lg,%lg}{%lg,%lg,%lg}{%lg,%lg,%lg}%lg".
bool VValueTrait<VCamera>::setValueFromText(VCamera& camera, const std::string& text)
{
    Loam::Scanner scanner(text);
    for (PhysicalSpace::Coordinates* triple : {static_cast<PhysicalSpace::Coordinates*>(&camera.position),
                                               static_cast<PhysicalSpace::Coordinates*>(&camera.focus),
                                               static_cast<PhysicalSpace::Coordinates*>(&camera.up)}) {
        scanner.literal('{').number((*triple)[0]);
        scanner.literal(',').number((*triple)[1]);
        scanner.literal(',').number((*triple)[2]);
        scanner.literal('}');
    }
    return scanner.number(camera.fieldOfView);
}

Frustum::Frustum() noexcept
{
    normalise();
}

void Frustum::compute(const VCamera& camera, double aspect, double nearDistance, double farDistance) noexcept
{
    constexpr double HalfDegree = 0.008726646259971648; // pi/360
    const PhysicalSpace::point& e = camera.position;
    const PhysicalSpace::vector backward = e - camera.focus;
    const PhysicalSpace::vector w = backward / length(backward);
    const PhysicalSpace::vector right = cross(PhysicalSpace::vector(camera.up), w);
    const PhysicalSpace::vector X = right / length(right);
    const PhysicalSpace::vector Y = cross(w, X);

    struct Corners {
        PhysicalSpace::point topLeft;
        PhysicalSpace::point topRight;
        PhysicalSpace::point bottomLeft;
        PhysicalSpace::point bottomRight;
    };
    const double t = std::tan(camera.fieldOfView * HalfDegree);
    const auto cornersAt = [&](double distance) -> Corners {
        const double height = t * distance;
        const double width = height * aspect;
        const PhysicalSpace::point center = e - distance * w;
        const PhysicalSpace::vector vertical = height * Y;
        const PhysicalSpace::vector horizontal = width * X;
        return {(center + vertical) - horizontal, (center + vertical) + horizontal, (center - vertical) - horizontal,
                (center - vertical) + horizontal};
    };
    const Corners n = cornersAt(nearDistance);
    const Corners f = cornersAt(farDistance);

    const auto setPlane = [this](Plane plane, const PhysicalSpace::vector& a, const PhysicalSpace::vector& b,
                                 const PhysicalSpace::point& corner) {
        m_normals[plane] = -cross(b, a);
        m_points[plane] = corner;
    };
    setPlane(Top, f.topLeft - n.topLeft, n.topRight - n.topLeft, n.topLeft);
    setPlane(Bottom, f.bottomRight - n.bottomRight, n.bottomLeft - n.bottomRight, n.bottomRight);
    setPlane(Left, f.bottomLeft - n.bottomLeft, n.topLeft - n.bottomLeft, n.bottomLeft);
    setPlane(Right, f.bottomRight - n.topRight, n.bottomRight - n.topRight, n.topRight);
    setPlane(Near, n.bottomRight - n.topRight, n.topLeft - n.topRight, n.topRight);
    setPlane(Far, f.bottomLeft - f.topLeft, f.topRight - f.topLeft, f.topLeft);
    normalise();
}

void Frustum::normalise() noexcept
{
    m_isRegular = true;
    for (std::size_t i = 0; i < PlaneCount; ++i) {
        m_units[i] = timesReciprocalLength(m_normals[i]);
        m_unitLengths[i] = length(m_units[i]);
        m_isRegular &= m_unitLengths[i] > 0.5 && m_unitLengths[i] < 2;
    }
}

int Frustum::isVisible(const Gyre::BoundingBox& box) const noexcept
{
    return isVisible(box.minimum().data(), box.maximum().data());
}

// The comparisons are written so that NaN neither hides a box nor makes it straddle.
int Frustum::isVisible(const double* minimum, const double* maximum) const noexcept
{
    int result = 1;
    for (std::size_t i = 0; i < PlaneCount; ++i) {
        const PhysicalSpace::vector& n = m_normals[i];
        const PhysicalSpace::point& p = m_points[i];
        const PhysicalSpace::vector& m = m_units[i];
        // The corners furthest along the normal and furthest against it.
        double P[3];
        double N[3];
        for (std::size_t axis = 0; axis < 3; ++axis) {
            P[axis] = n[axis] >= 0 ? maximum[axis] : minimum[axis];
            N[axis] = n[axis] >= 0 ? minimum[axis] : maximum[axis];
        }
        if (((P[1] - p[1]) * m[1] + (P[0] - p[0]) * m[0]) + (P[2] - p[2]) * m[2] < 0)
            return 0;
        if ((((N[1] - p[1]) * m[1] + (N[0] - p[0]) * m[0]) + (N[2] - p[2]) * m[2]) / m_unitLengths[i] < 0)
            result = -1;
    }
    return result;
}

namespace {

// Queries the capabilities of the machine once.
FrustumKernel kernel() noexcept
{
    static const FrustumKernel best = bestFrustumKernel();
    return best;
}

} // namespace

void Frustum::classify(const Boxes& boxes, std::size_t count, std::int8_t* results) const noexcept
{
    std::size_t done = 0;
    if (m_isRegular) {
        FrustumPlane planes[PlaneCount];
        for (std::size_t i = 0; i < PlaneCount; ++i) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                planes[i].point[axis] = m_points[i][axis];
                planes[i].unit[axis] = m_units[i][axis];
                const bool forwards = m_normals[i][axis] >= 0;
                planes[i].along[axis] = forwards ? boxes.maximum[axis] : boxes.minimum[axis];
                planes[i].against[axis] = forwards ? boxes.minimum[axis] : boxes.maximum[axis];
            }
        }
        done = kernel()(planes, count, results);
    }
    for (; done < count; ++done) {
        const double minimum[3] = {boxes.minimum[0][done], boxes.minimum[1][done], boxes.minimum[2][done]};
        const double maximum[3] = {boxes.maximum[0][done], boxes.maximum[1][done], boxes.maximum[2][done]};
        results[done] = static_cast<std::int8_t>(isVisible(minimum, maximum));
    }
}

namespace {

const VTypeLabel cameraLabel{typeid(VCamera), "camera"};

} // namespace

} // namespace Orla
