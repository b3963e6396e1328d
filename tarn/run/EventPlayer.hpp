#pragma once

#include <tarn/run/EventScript.hpp>

#include <fathom/VInteractionEvent.hpp>

#include <trellis/VObject.hpp>

namespace Tarn {

/// Writes events into the interaction source of the network, where every
/// interactive object reads them.
class EventPlayer {
public:
    /// For the announced object that provides events to everybody; there may be none.
    static EventPlayer find();

    explicit operator bool() const noexcept { return bool(m_output); }

    /// Writes \p event into \p pool and announces it. The grabber stays the one that
    /// the pool's event has.
    void play(const ScriptedEvent& event, const Orla::StrongPtr<Orla::ValuePool>& pool) const;

private:
    Orla::StrongPtr<Orla::VSlot> m_output;
};

} // namespace Tarn
