#pragma once

#include <tarn/Export.hpp>
#include <tarn/text/Faults.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tarn {

/// A recorded event of the pointer or the keyboard.
struct ScriptedEvent {
    std::uint64_t step = 0; ///< of the run; the event follows the evaluation of that step
    Place place;            ///< in the file
    std::uint64_t kind = 0; ///< a `VInteractionEvent::Kind`
    std::int32_t x = -1;
    std::int32_t y = -1;
    double wheel = 0;
    std::uint16_t button = 0;
    std::uint8_t modifiers = 0;
    std::string keyText;       ///< of a key that is pressed
    std::string armingKeyText; ///< of a key that is released
};

/// Reads a TOML file of events:
///
///     [[event]]
///     step = 0
///     kind = "press"
///     x = 100
///     y = 200
///     modifiers = ["shift", "control"]
///
///     [[event]]
///     step = 2
///     kind = "key"
///     key = "r"
///
/// Steps count from 0 and do not decrease. The kinds "press", "move", "release" and "wheel"
/// have a place, `x` and `y`, in pixels from the upper left corner. The first three may have
/// a `button`: "left", "middle" or "right"; without one, "press" and "release" mean the left
/// button. "wheel" has the turns of the `wheel`, away from the user if positive. The kinds
/// "key" (pressed and released), "keydown" and "keyup" have a `key`: one character, or
/// "space", "tab", "enter" or "escape". All may have `modifiers`: "shift", "control", "alt".
///
/// Adds each fault to \p faults and skips the event that it is in.
TARN_API std::vector<ScriptedEvent> parseEvents(std::string_view text, Faults& faults);

} // namespace Tarn
