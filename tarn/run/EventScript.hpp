#pragma once

#include <tarn/text/Faults.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tarn {

/// A recorded event of the pointer or the keyboard.
struct ScriptedEvent {
    std::uint64_t step = 0; ///< of the run, after whose evaluation the event comes
    Place place;            ///< in the file
    std::uint64_t kind = 0; ///< a `VInteractionEvent::Kind`
    std::int32_t x = -1;
    std::int32_t y = -1;
    double wheel = 0;
    std::uint16_t button = 0;
    std::uint8_t modifiers = 0;
    std::string keyText;       ///< of a key that goes down
    std::string armingKeyText; ///< of a key that comes up
};

/// Reads a script of events, a line each:
///
///     # after step 0: drag with the left button, then press a key
///     0 press 100 200 left
///     0 move 160 200 left shift
///     0 release 160 200 left
///     1 wheel 160 200 -0.5 shift+control
///     2 key r
///     3 keydown space
///     3 keyup space
///
/// Steps count from 0 and do not decrease. Buttons are left (if none is given),
/// middle and right; `move` has none unless it is given. A key is one character or
/// one of the names space, tab, enter, escape and hash; `key` is down and up. Blank
/// lines and what follows a "#" are left out.
///
/// What cannot be understood is added to \p faults and left out.
std::vector<ScriptedEvent> parseEvents(std::string_view text, Faults& faults);

} // namespace Tarn
