#include "Arrays.hpp"
#include "Bindings.hpp"
#include "ValueClass.hpp"

#include <fathom/Action.hpp>
#include <fathom/ImageTile.hpp>
#include <fathom/VInteractionEvent.hpp>
#include <fathom/VMultiPointerDevice.hpp>
#include <fathom/VObjectStatus.hpp>
#include <fathom/VScalarFunctor.hpp>

#include <array>
#include <cstdint>
#include <tuple>
#include <vector>

// Actions, events, statuses, and values that only pass through.

namespace Tarn::Python {

using Orla::ImageTile;
using Orla::VInteractionEvent;
using Orla::VMultiPointerDevice;
using Orla::VObjectStatus;
using Orla::VScalarFunctor;

namespace {

using Action = StrongPtr<Orla::VAction>;
using Channels = std::tuple<std::uint8_t, std::uint8_t, std::uint8_t, std::uint8_t>;
using Pixels = std::tuple<std::int32_t, std::int32_t>;

VObjectStatus::Color toColor(const Channels& channels)
{
    const auto [red, green, blue, alpha] = channels;
    return {red, green, blue, alpha};
}

Channels toChannels(const VObjectStatus::Color& color)
{
    return {color.red, color.green, color.blue, color.alpha};
}

ImageTile::Size toSize(const Pixels& pixels)
{
    return {{std::get<0>(pixels), std::get<1>(pixels)}};
}

Pixels toPixels(const ImageTile::Size& size)
{
    return {size[0], size[1]};
}

void bindEvents(py::module_& module)
{
    using Event = VInteractionEvent;
    ValueClass<Event>(module, "Event", "One event of a pointer or the keyboard.")
        .constructor(
            [](unsigned long long kind, std::int32_t x, std::int32_t y, double wheel, std::uint16_t button,
               std::uint8_t modifiers, const Text& keyText, const Text& armingKeyText, double time, double pressure,
               std::uint64_t device, std::int32_t clicks) {
                Event event;
                event.kind = kind;
                event.x = x;
                event.y = y;
                event.wheel = wheel;
                event.button = button;
                event.modifiers = modifiers;
                event.keyText = keyText.bytes;
                event.armingKeyText = armingKeyText.bytes;
                event.time = time;
                event.pressure = pressure;
                event.device = device;
                event.clicks = clicks;
                return event;
            },
            py::arg("kind") = 1, py::arg("x") = -1, py::arg("y") = -1, py::arg("wheel") = 0.0, py::arg("button") = 0,
            py::arg("modifiers") = 0, py::arg("key_text") = "", py::arg("arming_key_text") = "", py::arg("time") = 0.0,
            py::arg("pressure") = 0.0, py::arg("device") = 0, py::arg("clicks") = 0)
        .field(
            "kind", [](const Event& self) { return self.kind; },
            "1 nothing, 2 press, 3 move, 4 release, 5 wheel, 6 key pressed, 7 key released.")
        .field(
            "x", [](const Event& self) { return self.x; }, "Pixels from the left.")
        .field(
            "y", [](const Event& self) { return self.y; }, "Pixels from the top.")
        .field(
            "wheel", [](const Event& self) { return self.wheel; }, "Turns, positive away from the user.")
        .field(
            "button", [](const Event& self) { return self.button; }, "1 left, 2 middle, 3 right, 0 none.")
        .field(
            "modifiers", [](const Event& self) { return self.modifiers; }, "Bits: 1 shift, 2 control, 4 alt.")
        .field(
            "key_text", [](const Event& self) { return Text{self.keyText}; }, "The characters of a pressed key.")
        .field(
            "arming_key_text", [](const Event& self) { return Text{self.armingKeyText}; },
            "The characters that arm a hot key.")
        .field(
            "time", [](const Event& self) { return self.time; }, "Grows with every event of the source.")
        .field(
            "pressure", [](const Event& self) { return self.pressure; }, "The pressure of a pen.")
        .field(
            "device", [](const Event& self) { return self.device; }, "The number of the device.")
        .field(
            "clicks", [](const Event& self) { return self.clicks; }, "The number of clicks.");

    using Pointer = std::tuple<std::int32_t, Number, Number>;
    ValueClass<VMultiPointerDevice>(module, "TouchPoints", "The pointers on a touch screen: (identifier, x, y) each.",
                                    Accepts::Argument)
        .constructor(
            [](const std::vector<Pointer>& pointers) {
                VMultiPointerDevice made;
                for (const auto& [identifier, x, y] : pointers)
                    made.pointers.push_back({identifier, x.value, y.value});
                return made;
            },
            py::arg("pointers") = py::tuple())
        .field(
            "pointers",
            [](const VMultiPointerDevice& self) {
                py::list pointers;
                for (const VMultiPointerDevice::Pointer& each : self.pointers)
                    pointers.append(py::make_tuple(each.identifier, each.x, each.y));
                return py::tuple(pointers);
            },
            "The pointers.");
}

void bindImageTiles(py::module_& module)
{
    ValueClass<ImageTile>(module, "ImageTile", "A piece of a frame buffer, with its pixels in two arrays.")
        .constructor(
            [](const Pixels& size, const py::object& primary, const py::object& secondary, const Pixels& offset,
               const Pixels& span) {
                return ImageTile{toSize(size), chunkOf(primary), chunkOf(secondary), toSize(offset), toSize(span)};
            },
            py::arg("size") = Pixels{0, 0}, py::arg("primary") = py::none(), py::arg("secondary") = py::none(),
            py::arg("offset") = Pixels{0, 0}, py::arg("span") = Pixels{1, 1})
        .field(
            "size", [](const ImageTile& self) { return toPixels(self.size); }, "Width and height in pixels.")
        .field(
            "primary", [](const ImageTile& self) { return arrayOf(self.primaryChunk); }, "Pixels; may be None.")
        .field(
            "secondary", [](const ImageTile& self) { return arrayOf(self.secondaryChunk); }, "Pixels; may be None.")
        .field(
            "offset", [](const ImageTile& self) { return toPixels(self.offset); }, "The position in pixels.")
        .field(
            "span", [](const ImageTile& self) { return toPixels(self.span); }, "The number of tiles covered.")
        // Pixels are compared by identity, as the framework does.
        .def("__eq__",
             [](const ImageTile& self, py::handle other) -> py::object {
                 if (!py::isinstance<ImageTile>(other))
                     return py::reinterpret_borrow<py::object>(Py_NotImplemented);
                 return py::bool_(self == other.cast<const ImageTile&>());
             })
        .def("__hash__", [](const ImageTile& self) {
            return py::hash(py::make_tuple(toPixels(self.size), toPixels(self.offset), toPixels(self.span)));
        });
}

} // namespace

void bindSignals(py::module_& module)
{
    ValueClass<Action>(module, "Action", "A one-shot trigger, like a button press. It has no text.")
        .constructor([](Number number) { return Action{Loam::makeStrong<Orla::VAction>(number.value)}; },
                     py::arg("number") = 0.0)
        .field(
            "number", [](const Action& self) { return self ? self->number : 0.0; },
            "The number that the objects receive.");

    bindEvents(module);

    ValueClass<VObjectStatus>(module, "Status", "The status of an object: a text with simple markup, and its look.")
        .constructor(
            [](const Text& text, const Channels& background, const Channels& foreground, std::int32_t level) {
                VObjectStatus status{text.bytes};
                status.background = toColor(background);
                status.foreground = toColor(foreground);
                status.level = level;
                return status;
            },
            py::arg("text") = "", py::arg("background") = Channels{0, 0, 0, 0},
            py::arg("foreground") = Channels{192, 192, 192, 255}, py::arg("level") = 0)
        .field(
            "text", [](const VObjectStatus& self) { return Text{self.text}; }, "The text.")
        .field(
            "background", [](const VObjectStatus& self) { return toChannels(self.background); },
            "Red, green, blue and opacity from 0 to 255.")
        .field(
            "foreground", [](const VObjectStatus& self) { return toChannels(self.foreground); },
            "Red, green, blue and opacity from 0 to 255.")
        .field(
            "level", [](const VObjectStatus& self) { return self.level; }, "The level.");

    bindImageTiles(module);

    ValueClass<VScalarFunctor>(module, "ScalarFunction", "A function that objects pass on. Python cannot call it.")
        .constructor([] { return VScalarFunctor{}; })
        .def("__bool__", [](const VScalarFunctor& self) { return bool(self.functor); })
        .def("__eq__",
             [](const VScalarFunctor& self, py::handle other) -> py::object {
                 if (!py::isinstance<VScalarFunctor>(other))
                     return py::reinterpret_borrow<py::object>(Py_NotImplemented);
                 return py::bool_(self == other.cast<const VScalarFunctor&>());
             })
        .def("__hash__",
             [](const VScalarFunctor& self) { return reinterpret_cast<std::uintptr_t>(self.functor.get()); })
        .def("__reduce__", [](py::handle self) {
            if (self.cast<const VScalarFunctor&>().functor)
                throw py::type_error("functions of objects cannot be pickled");
            return reductionOf(self);
        });
}

} // namespace Tarn::Python
