#pragma once

#include <fathom/Char.hpp>
#include <fathom/VInteractionEvent.hpp>

#include <map>

namespace Orla {

/// Mix-in for processing objects that react to one key of the keyboard.
///
/// Adds the input "hotkey" for the key's character to the input for events. On each
/// update the object asks whether its key was pressed; a stroke is reported once,
/// and the next one only after an event has armed the key again. The first stroke of
/// all needs no arming.
///
/// Whether the key is armed belongs to the object: a stroke that one pool reported is not
/// reported in another one. The object therefore runs in one pool at a time.
class FATHOM_API HotKey : public Interactive {
public:
    /// One key and whether its next stroke counts.
    struct FATHOM_API Key {
        char key = 0; ///< 0 means no key
        bool armed = false;

        /// True if the event is a stroke of the key while that is armed, which
        /// disarms it. Any other event that arms the key does so here.
        bool isPressed(const VInteractionEvent& event);

        /// True for each event of the key, armed or not.
        bool isRepeatedlyPressed(const VInteractionEvent& event) const;
    };

    /// Orders characters by their signed values, whatever `char` is by itself.
    struct SignedLess {
        constexpr bool operator()(char a, char b) const noexcept
        {
            return static_cast<signed char>(a) < static_cast<signed char>(b);
        }
    };

    /// Which objects listen to a key.
    using Map = std::multimap<char, WeakPtrImpl<HotKey, VManagedObjectBase>, SignedLess>;

    /// \p slotName names the input for events; both inputs get \p expertLevel.
    HotKey(const char* slotName, int expertLevel);

    /// The object's entries in the map stay, and have expired.
    ~HotKey() override;

    /// The map of the process, for those who dispatch keys. Entries are made by
    /// `setHotKey` and never removed; an object may have several, also equal ones,
    /// and one whose object is gone has expired.
    static Map& HotKeyMap();

    /// Applies `Key::isPressed` to the object's event in \p pool.
    bool isPressed(Key& key, const StrongPtr<ValuePool>& pool) const;

    /// Applies `Key::isRepeatedlyPressed` to the object's event in \p pool.
    bool isRepeatedlyPressed(const Key& key, const StrongPtr<ValuePool>& pool) const;

    /// Makes \p key the object's key in \p pool, where the pool holds one already,
    /// and announces the change. Enters the object into the map in any case.
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
