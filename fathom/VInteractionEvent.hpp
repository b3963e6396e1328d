#pragma once

#include <fathom/Export.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

#include <trellis/VObject.hpp>

#include <loam/Chunk.hpp>

#include <cstdint>
#include <list>
#include <mutex>
#include <string>

namespace Orla {

/// One event of a pointer or the keyboard. All copies of an event stream share its grabber,
/// which decides which object may use it.
///
/// Text form: the position, `(X,Y)` and a line feed; it cannot be read back.
class FATHOM_API VInteractionEvent {
public:
    /// One entry of a grab stack.
    struct FATHOM_API GrabReason {
        /// Why a grab is held; passed through unchanged, also a number without a name.
        enum Type : int { Unspecified, Pointer, Keyboard };

        WeakPtrImpl<VObject, VManagedObjectBase> object; ///< the object that grabbed
        Type type = Unspecified;
        int value = 0;             ///< passed with the grab
        StrongPtr<ChunkBase> data; ///< attached to the grab; may be null
    };

    /// The holders of the pointer and the keyboard: a stack whose front is the current holder.
    /// Events of one grabber may be used in several threads.
    class FATHOM_API InteractionGrabber : public Loam::ReferenceBase<InteractionGrabber> {
    public:
        explicit InteractionGrabber(const std::string& name);

        /// Starts with a copy of \p other's stack; objects and data are shared.
        InteractionGrabber(InteractionGrabber& other, const std::string& name);
        ~InteractionGrabber() override;

        const std::string& name() const noexcept { return m_name; }

        /// Returns the stack, current holder first; objects of entries may have been
        /// destroyed. Do not call it while another thread uses an event of the grabber.
        const std::list<GrabReason>& stack() const noexcept { return m_stack; }

    private:
        friend class VInteractionEvent;

        template<class Function>
        bool withHolder(Function&& function);

        std::list<GrabReason> m_stack;
        std::string m_name;
        std::mutex m_mutex; // guards the stack
    };

    /// What happened. The numbers are those of this system's interaction source; another
    /// source may have more.
    enum Kind : unsigned long long {
        Nothing = 1,
        Press = 2, ///< of a pointer button
        Move = 3,
        Release = 4,
        Wheel = 5,
        KeyPress = 6,
        KeyRelease = 7
    };

    /// Bits of `modifiers`: keys held during the event.
    enum Modifier : std::uint8_t { Shift = 1, Control = 2, Alt = 4 };

    /// Creates an event of kind `Nothing` without a grabber.
    VInteractionEvent();

    /// Creates an event at (-1,-1) with everything else zero or empty. The device and the
    /// button are left unset, for the interaction source to fill in.
    VInteractionEvent(unsigned long long kind, const StrongPtr<InteractionGrabber>& grabber);

    VInteractionEvent(const VInteractionEvent&) = default;
    VInteractionEvent& operator=(const VInteractionEvent&) = default;
    ~VInteractionEvent();

    /// Makes \p obj the current holder. If it already is, its reason is replaced; another
    /// object's grab stays below. Does nothing if \p obj was destroyed or without a grabber.
    void grab(const WeakPtrImpl<VObject>& obj, GrabReason::Type type, int value, const StrongPtr<ChunkBase>& data);

    /// Ends the grab of \p obj if it is the current holder. A grab deeper in the stack stays
    /// until it reaches the front.
    void ungrab(const WeakPtrImpl<VObject>& obj);

    /// Returns true if \p obj may act on the event: it holds the grab, or no object does.
    /// Although `const`, drops destroyed holders from the front of the shared stack: they must
    /// never block the input.
    bool mayuse(const WeakPtrImpl<VObject>& obj) const;

    /// Returns true if \p obj holds the grab. Drops destroyed holders like `mayuse`.
    bool isMine(const WeakPtrImpl<VObject>& obj) const;

    /// Always returns false: every event counts as a change, even if it repeats the previous
    /// one.
    bool operator==(const VInteractionEvent&) const noexcept { return false; }

    std::int32_t x; ///< pointer position in pixels from the left
    std::int32_t y; ///< pointer position in pixels from the top
    double pressure;
    double wheel; ///< turns, positive away from the user
    double time;  ///< grows with every event of the source, to detect an event seen before
    std::uint64_t device;
    unsigned long long kind;   ///< type of the event, usually a `Kind`
    std::uint8_t modifiers;    ///< bits of `Modifier`
    std::uint16_t button;      ///< 1 left, 2 middle, 3 right, 0 none
    std::string keyText;       ///< characters of the key event; the first one fires hot keys
    std::string armingKeyText; ///< characters that arm a hot key
    std::int32_t clicks;
    StrongPtr<InteractionGrabber> grabber;
};

template<>
struct FATHOM_API VValueTrait<VInteractionEvent> {
    static constexpr bool sharesState = true; ///< copies share the grabber

    static std::string Text(const VInteractionEvent& event);

    /// Refuses every text.
    static bool setValueFromText(VInteractionEvent& event, const std::string& text);
};

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<VInteractionEvent>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<VInteractionEvent>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<VInteractionEvent>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<VInteractionEvent>;
extern template class FATHOM_EXTERN_TEMPLATE TypedSlot<VInteractionEvent>;

/// Mix-in for processing objects that react to the pointer and the keyboard. Adds an input for
/// events and connects it to the only interaction source of the network, so all such objects
/// receive the same stream.
class FATHOM_API Interactive : public virtual VSkale {
public:
    Interactive(const char* slotName, int expertLevel);

    /// Does not end a grab that the object holds.
    ~Interactive() override;

    const TypedSlot<VInteractionEvent>& interactionSlot() const noexcept { return m_interaction; }

private:
    TypedSlot<VInteractionEvent> m_interaction;
};

} // namespace Orla
