#include <earth/Orbit.hpp>

#include <fathom/Double.hpp>
#include <fathom/HotKey.hpp>
#include <fathom/Range.hpp>
#include <fathom/VCamera.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <loam/Chunk.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace Earth {

using Orla::describe;
using Orla::StrongPtr;
using Orla::VInteractionEvent;

/// Lets the user move a camera around its focus: dragging with the left button turns
/// the globe, the wheel zooms, and the hot key, "r" by default, resets the camera to the
/// input `camera`.
///
/// Holds the grab from the press to the release, which keeps other objects from acting on
/// the same movement. While another object holds the grab, the camera does not move.
class CameraControl : public Orla::VObject, public Orla::HotKey {
public:
    CameraControl(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}, HotKey{"event", 0}
    {
        hotKeySlot().slot()->setInitialText("r");
    }

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const Orla::VCamera initial = m_initial.value(pool);
        const auto memory = Orla::VOutputAssignmentContext<Orla::VCamera>{m_start.parameter(), pool};
        Orla::VCamera start;
        memory >> start;
        if (HotKeyIsPressed(pool) || !(start == initial)) {
            // The user resets the camera, or the input has changed.
            memory <<= initial;
            m_camera(pool) <<= initial;
            return true;
        }
        VInteractionEvent event;
        if (interactionSlot().read(pool, event))
            react(event, pool);
        return true;
    }

private:
    void react(VInteractionEvent& event, const StrongPtr<Orla::ValuePool>& pool)
    {
        const Orla::WeakPtrImpl<VObject> self = this;
        Orla::VCamera now;
        m_camera(pool) >> now;
        switch (event.kind) {
        case VInteractionEvent::Press:
            if (event.button == 1 && event.mayuse(self) && !event.isMine(self))
                event.grab(self, VInteractionEvent::GrabReason::Pointer, event.button, grabbed(event, now));
            break;
        case VInteractionEvent::Move:
            if (const auto drag = dragOf(event))
                m_camera(pool) <<= drag->at(event);
            break;
        case VInteractionEvent::Release:
            if (const auto drag = dragOf(event)) {
                m_camera(pool) <<= drag->at(event);
                event.ungrab(self);
            }
            break;
        case VInteractionEvent::Wheel:
            // The same event is read again when another input changes.
            if ((m_turned(pool) <<= event.time) && event.mayuse(self) && std::isfinite(event.wheel))
                m_camera(pool) <<= zoomed(now, std::pow(WheelFactor, std::clamp(event.wheel, -MostTurns, MostTurns)));
            break;
        default:
            break;
        }
    }

    static constexpr double DegreesPerPixel = 0.25;
    static constexpr double WheelFactor = 0.9;
    static constexpr double MostTurns = 20;

    /// The start of a drag. Movements are relative to it, so reading an event twice moves
    /// the camera once.
    struct Drag {
        double x = 0;
        double y = 0;
        Orla::VCamera camera;

        Orla::VCamera at(const VInteractionEvent& event) const
        {
            return orbited(camera, (x - event.x) * DegreesPerPixel, (event.y - y) * DegreesPerPixel);
        }
    };

    using DragChunk = Loam::TypedChunk<Drag>;

    static StrongPtr<Loam::ChunkBase> grabbed(const VInteractionEvent& event, const Orla::VCamera& camera)
    {
        const Drag drag{static_cast<double>(event.x), static_cast<double>(event.y), camera};
        return Loam::makeStrong<DragChunk>(std::size_t{1}, drag);
    }

    // Returns null unless this object holds the grab.
    const Drag* dragOf(const VInteractionEvent& event) const
    {
        const Orla::WeakPtrImpl<VObject> self = const_cast<CameraControl*>(this);
        if (!event.isMine(self))
            return nullptr;
        const StrongPtr<DragChunk> chunk{event.grabber->stack().front().data};
        return chunk && chunk->size() == 1 ? chunk->data() : nullptr;
    }

    Orla::TypedSlot<Orla::VCamera> m_initial{this, "camera", Orla::VCamera{}, describe("Where the camera starts.")};
    Orla::VOutput<Orla::VCamera> m_camera{this, "camera", Orla::VCamera{},
                                          describe("Where the user has moved the camera.")};
    // State of the object that belongs to a pool is stored in the pool.
    Orla::VOutput<Orla::VCamera> m_start{this, "start", Orla::VCamera{},
                                         describe("The start for which the camera was moved.").asPrivateState()};
    Orla::VOutput<double> m_turned{this, "turned", -1.0,
                                   describe("The time of the last turn of the wheel.").asPrivateState()};
};

} // namespace Earth

namespace {

const Orla::VObjectType<Earth::CameraControl> cameraControlType{
    "CameraControl",
    Orla::describeType("Lets the user move a camera around its focus.")
        .details("Dragging with the left button turns the globe, the wheel zooms, and the hot key resets the camera.")
        .category("Pictures")
        .keywords("drag", "zoom", "rotate", "orbit")};

} // namespace
