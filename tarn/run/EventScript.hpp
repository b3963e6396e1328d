#pragma once

#include <tarn/text/Faults.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tarn {

/// A recorded event of the pointer or the keyboard.
struct ScriptedEvent {
    std::uint64_t step = 0; ///< of the run; the event follows its evaluation
    Place place;            ///< in the file
    std::uint64_t kind = 0; ///< a `VInteractionEvent::Kind`
    std::int32_t x = -1;
    std::int32_t y = -1;
    double wheel = 0;
    std::uint16_t button = 0;
    std::uint8_t modifiers = 0;
    std::string keyText;       ///< of a pressed key
    std::string armingKeyText; ///< of a released key
};

/// Parses a script of events, one per line:
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
/// Steps count from 0 and must not decrease. Buttons are left (the default), middle and
/// right; `move` has no button by default. A key is one character or one of the names space,
/// tab, enter, escape and hash; `key` presses and releases it. Blank lines and text after a
/// "#" are ignored.
///
/// Lines that cannot be understood are added to \p faults and left out.
std::vector<ScriptedEvent> parseEvents(std::string_view text, Faults& faults);

} // namespace Tarn
