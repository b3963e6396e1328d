#include "Bindings.hpp"
#include "ValueClass.hpp"

#include <fathom/BoundingBall.hpp>
#include <fathom/BoundingBox.hpp>
#include <fathom/ColorTypes.hpp>
#include <fathom/GyreFixedArray.hpp>
#include <fathom/GyrePhysicalSpaceBiVector.hpp>
#include <fathom/GyrePhysicalSpacePoint.hpp>
#include <fathom/MultiRange.hpp>
#include <fathom/Position2D.hpp>
#include <fathom/VCamera.hpp>

#include <optional>
#include <utility>
#include <vector>

// Points, directions, boxes, colours and cameras.

namespace Tarn::Python {

using Gyre::BoundingBall;
using Gyre::MultiRange;
using Gyre::PhysicalSpace;
using Gyre::rgba_float_t;
using Orla::VCamera;

namespace {

using Box = StrongPtr<Gyre::BoundingBox, Orla::InterfaceBase>;
using Integers = Gyre::FixedArray<int, 3>;
using Pair = Gyre::FixedArray<double, 2>;

template<class T>
void bindCoordinates(py::module_& module, const char* name, const char* doc)
{
    ValueClass<T>(module, name, doc)
        .constructor(
            [](Number x, Number y, Number z) {
                return T{x.value, y.value, z.value};
            },
            py::arg("x") = 0.0, py::arg("y") = 0.0, py::arg("z") = 0.0)
        .field(
            "x", [](const T& self) { return self.x(); }, "The first coordinate.")
        .field(
            "y", [](const T& self) { return self.y(); }, "The second coordinate.")
        .field(
            "z", [](const T& self) { return self.z(); }, "The third coordinate.")
        .asSequence();
}

// Reads an argument that is a T or three numbers.
template<class T>
T coordinates(py::handle object)
{
    if (const StrongPtr<VValueBase> value = Python::fromPython(typeid(T), object))
        return contentOf<T>(*value);
    return T{};
}

py::object cornerOf(const Box& box, const PhysicalSpace::point& (Gyre::BoundingBox::*corner)() const noexcept)
{
    return box ? py::cast((*box.*corner)()) : py::none();
}

void bindBoxes(py::module_& module)
{
    ValueClass<BoundingBall>(module, "Ball", "A ball: its center, a `Point`, and its radius.")
        .constructor(
            [](const py::object& center, Number radius) {
                return BoundingBall{coordinates<PhysicalSpace::point>(center), radius.value};
            },
            py::arg("center") = py::make_tuple(0, 0, 0), py::arg("radius") = 0.0)
        .field(
            "center", [](const BoundingBall& self) { return self.center(); }, "The center.")
        .field(
            "radius", [](const BoundingBall& self) { return self.radius(); }, "The radius.")
        .def("__contains__", [](const BoundingBall& self, const py::object& place) {
            return self.contains(coordinates<PhysicalSpace::point>(place));
        });

    ValueClass<Box>(module, "Box",
                    "An axis-aligned box by its corners, two `Point`s. Without corners, the box is not set.")
        .constructor(
            [](const py::object& minimum, const py::object& maximum) -> Box {
                if (minimum.is_none() != maximum.is_none())
                    throw py::value_error("found one corner, expected two or none");
                if (minimum.is_none())
                    return {};
                const Box box = Loam::makeStrong<Gyre::BoundingBox>(coordinates<PhysicalSpace::point>(minimum),
                                                                    coordinates<PhysicalSpace::point>(maximum));
                box->updateBall();
                return box;
            },
            py::arg("minimum") = py::none(), py::arg("maximum") = py::none())
        .field(
            "minimum", [](const Box& self) { return cornerOf(self, &Gyre::BoundingBox::minimum); },
            "The corner with the smallest coordinates; None if the box is not set.")
        .field(
            "maximum", [](const Box& self) { return cornerOf(self, &Gyre::BoundingBox::maximum); },
            "The corner with the largest coordinates; None if the box is not set.")
        .def("__bool__", [](const Box& self) { return bool(self); });
}

void bindTuples(py::module_& module)
{
    ValueClass<Integers>(module, "IntegerTriple", "Three integers.")
        .constructor(
            [](int a, int b, int c) {
                return Integers{{a, b, c}};
            },
            py::arg("a") = 0, py::arg("b") = 0, py::arg("c") = 0)
        .field(
            "a", [](const Integers& self) { return self[0]; }, "The first integer.")
        .field(
            "b", [](const Integers& self) { return self[1]; }, "The second integer.")
        .field(
            "c", [](const Integers& self) { return self[2]; }, "The third integer.")
        .asSequence();

    ValueClass<Pair>(module, "Pair", "Two numbers, such as a position or a size.")
        .constructor(
            [](Number x, Number y) {
                return Pair{{x.value, y.value}};
            },
            py::arg("x") = 0.0, py::arg("y") = 0.0)
        .field(
            "x", [](const Pair& self) { return self[0]; }, "The first number.")
        .field(
            "y", [](const Pair& self) { return self[1]; }, "The second number.")
        .asSequence();

    ValueClass<MultiRange>(module, "Ranges",
                           "Ranges of a value with several components: the lower and upper bound of each component "
                           "in turn.",
                           Accepts::Argument)
        .constructor(
            [](const py::iterable& bounds) {
                std::vector<double> numbers;
                for (const py::handle bound : bounds) {
                    const std::optional<double> number = toNumber(bound);
                    if (!number)
                        throw py::type_error("found " + printed(bound) + ", expected a number");
                    numbers.push_back(*number);
                }
                return MultiRange{std::move(numbers)};
            },
            py::arg("bounds") = py::tuple())
        .field(
            "bounds",
            [](const MultiRange& self) {
                py::list bounds;
                for (const double bound : self)
                    bounds.append(bound);
                return py::tuple(bounds);
            },
            "The bounds.")
        .def("__len__", [](const MultiRange& self) { return self.size(); });
}

} // namespace

void bindGeometry(py::module_& module)
{
    bindCoordinates<PhysicalSpace::point>(module, "Point", "A position.");
    bindCoordinates<PhysicalSpace::bivector>(
        module, "Bivector", "An oriented plane element by its normal vector, such as an up direction.");
    bindBoxes(module);
    bindTuples(module);

    ValueClass<rgba_float_t>(module, "Color", "A colour: red, green, blue and opacity, each usually from 0 to 1.")
        .constructor(
            [](Number r, Number g, Number b, Number a) {
                return rgba_float_t{static_cast<float>(r.value), static_cast<float>(g.value),
                                    static_cast<float>(b.value), static_cast<float>(a.value)};
            },
            py::arg("r") = 0.0, py::arg("g") = 0.0, py::arg("b") = 0.0, py::arg("a") = 1.0)
        .field(
            "r", [](const rgba_float_t& self) { return self.r; }, "Red.")
        .field(
            "g", [](const rgba_float_t& self) { return self.g; }, "Green.")
        .field(
            "b", [](const rgba_float_t& self) { return self.b; }, "Blue.")
        .field(
            "a", [](const rgba_float_t& self) { return self.a; }, "Opacity.")
        .asSequence();

    const VCamera usual;
    ValueClass<VCamera>(module, "Camera",
                        "The viewer's position, the point to look at, the up direction and the full vertical opening "
                        "angle in degrees.")
        .constructor(
            [](const py::object& position, const py::object& focus, const py::object& up, Number fieldOfView) {
                return VCamera{coordinates<PhysicalSpace::point>(position), coordinates<PhysicalSpace::point>(focus),
                               coordinates<PhysicalSpace::bivector>(up), fieldOfView.value};
            },
            py::arg("position") = py::cast(usual.position), py::arg("focus") = py::cast(usual.focus),
            py::arg("up") = py::cast(usual.up), py::arg("field_of_view") = usual.fieldOfView)
        .field(
            "position", [](const VCamera& self) { return self.position; }, "The viewer's position.")
        .field(
            "focus", [](const VCamera& self) { return self.focus; }, "The point to look at.")
        .field(
            "up", [](const VCamera& self) { return self.up; }, "The up direction, of any length.")
        .field(
            "field_of_view", [](const VCamera& self) { return self.fieldOfView; }, "The opening angle in degrees.");
}

} // namespace Tarn::Python
