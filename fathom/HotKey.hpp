#pragma once

#include <fathom/Char.hpp>
#include <fathom/VInteractionEvent.hpp>

#include <map>

namespace Orla {

/// Mix-in for processing objects that react to one key.
///
/// In addition to the input for events, adds the input "hotkey" for the key's character. On
/// each update the object checks whether its key was pressed. A keystroke is reported once;
/// the next one is reported only after an event has armed the key again. The first keystroke
/// needs no arming.
///
/// Whether the key is armed is state of the object, not of a pool. If the object is evaluated in
/// several pools, a keystroke is reported in the first that sees it and not in the others, and
/// an event that arms the key in one pool arms it for all. The object therefore runs in one pool
/// at a time. To report a keystroke in each pool, keep one `Key` per pool and pass it to
/// `isPressed`.
class FATHOM_API HotKey : public Interactive {
public:
    /// A key, and whether its next stroke counts. It starts disarmed, unlike the object's own
    /// key: an event must arm it before the first stroke is reported.
    struct FATHOM_API Key {
        char key = 0; ///< 0 means no key
        bool armed = false;

        /// Returns true if the event is a stroke of the armed key, and disarms the key.
        /// Otherwise, arms the key if it begins the event's `armingKeyText`.
        bool isPressed(const VInteractionEvent& event);

        /// Returns true for each stroke of the key, armed or not.
        bool isRepeatedlyPressed(const VInteractionEvent& event) const;
    };

    /// Orders characters by their signed values, whether or not `char` is signed.
    struct SignedLess {
        constexpr bool operator()(char a, char b) const noexcept
        {
            return static_cast<signed char>(a) < static_cast<signed char>(b);
        }
    };

    /// Maps keys to the objects that listen to them.
    using Map = std::multimap<char, WeakPtrImpl<HotKey, VManagedObjectBase>, SignedLess>;

    /// \p slotName names the input for events; both inputs get \p expertLevel.
    HotKey(const char* slotName, int expertLevel);

    /// The object's entries stay in the map as expired pointers.
    ~HotKey() override;

    /// Returns the map of the process, for code that dispatches keys. `setHotKey` adds the
    /// entries; they are never removed. An object may have several entries, even equal ones.
    /// The entry of a destroyed object has expired.
    static Map& HotKeyMap();

    /// Applies `Key::isPressed` to the object's event in \p pool.
    bool isPressed(Key& key, const StrongPtr<ValuePool>& pool) const;

    /// Applies `Key::isRepeatedlyPressed` to the object's event in \p pool.
    bool isRepeatedlyPressed(const Key& key, const StrongPtr<ValuePool>& pool) const;

    /// Sets the object's key in \p pool to \p key if the pool already holds one, and announces
    /// the change. Enters the object into the map in any case.
    void setHotKey(char key, const StrongPtr<ValuePool>& pool);

    /// As `isPressed`, for the object's own key in \p pool.
    bool HotKeyIsPressed(const StrongPtr<ValuePool>& pool);

    /// As `isRepeatedlyPressed`, for the object's own key in \p pool.
    bool HotKeyIsRepeatedlyPressed(const StrongPtr<ValuePool>& pool) const;

    const TypedSlot<char>& hotKeySlot() const noexcept { return m_hotkey; }

private:
    VInteractionEvent eventIn(const StrongPtr<ValuePool>& pool) const;
    char keyIn(const StrongPtr<ValuePool>& pool) const;

    bool m_armed = true;
    TypedSlot<char> m_hotkey;
};

} // namespace Orla
