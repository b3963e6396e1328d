#include "Support.hpp"

#include <tarn/run/EventScript.hpp>
#include <tarn/text/PlacedText.hpp>

#include <fathom/VInteractionEvent.hpp>

#include <loam/Utf8.hpp>

#include <algorithm>
#include <cmath>

// Reads scripts of events.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = Fuzz::textOf(data, size);
    Tarn::Faults faults{"events.toml"};
    const std::vector<Tarn::ScriptedEvent> events = Tarn::parseEvents(text, faults);
    Fuzz::require(std::ranges::is_sorted(events, {}, &Tarn::ScriptedEvent::step), "events are in the order of steps");
    const Tarn::Place end = Tarn::placeAt(text, text.size());
    for (const Tarn::ScriptedEvent& event : events) {
        Fuzz::require(event.place && event.place <= end, "an event has a place inside the file");
        Fuzz::require(event.kind != Orla::VInteractionEvent::Nothing, "an event has a kind");
        Fuzz::require(std::isfinite(event.wheel), "the turns of a wheel are finite");
        Fuzz::require(Loam::countCharacters(event.keyText + event.armingKeyText) <= 1, "a key is one character");
    }
    for (const std::string& line : faults.lines())
        Fuzz::require(Loam::isUtf8(line) && line.find('\n') == std::string::npos, "a fault is one line of UTF-8");
    return 0;
}
