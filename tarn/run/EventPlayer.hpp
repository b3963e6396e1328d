#pragma once

#include <tarn/run/EventScript.hpp>

#include <fathom/VInteractionEvent.hpp>

#include <trellis/VObject.hpp>

namespace Tarn {

/// Writes events to the interaction source of the network, from which all interactive objects
/// read them.
class EventPlayer {
public:
    /// Finds the announced object that provides events to all others; there may be none.
    static EventPlayer find();

    explicit operator bool() const noexcept { return bool(m_output); }

    /// Writes \p event into \p pool and announces it. Keeps the grabber of the pool's event.
    void play(const ScriptedEvent& event, const Orla::StrongPtr<Orla::ValuePool>& pool) const;

private:
    Orla::StrongPtr<Orla::VSlot> m_output;
};

} // namespace Tarn
