#include <fathom/HotKey.hpp>

namespace Orla {

namespace {

bool beginsWith(const std::string& text, char key)
{
    return !text.empty() && text.front() == key;
}

} // namespace

bool HotKey::Key::isPressed(const VInteractionEvent& event)
{
    if (key == 0)
        return false;
    if (armed && beginsWith(event.keyText, key)) {
        armed = false;
        return true;
    }
    if (beginsWith(event.armingKeyText, key))
        armed = true;
    return false;
}

bool HotKey::Key::isRepeatedlyPressed(const VInteractionEvent& event) const
{
    return key != 0 && beginsWith(event.keyText, key);
}

HotKey::HotKey(const char* slotName, int expertLevel)
    : Interactive{slotName, expertLevel}, m_hotkey{this, "hotkey", 0, expertLevel}
{
    if (m_hotkey.slot())
        m_hotkey.slot()->describe(describe("The key to which the object reacts."));
    runsInOnePool(); // an update may change whether the key is armed
}

HotKey::~HotKey() = default;

HotKey::Map& HotKey::HotKeyMap()
{
    static Map theMap;
    return theMap;
}

VInteractionEvent HotKey::eventIn(const StrongPtr<ValuePool>& pool) const
{
    VInteractionEvent event;
    interactionSlot().read(pool, event);
    return event;
}

char HotKey::keyIn(const StrongPtr<ValuePool>& pool) const
{
    char key = 0;
    m_hotkey.read(pool, key);
    return key;
}

bool HotKey::isPressed(Key& key, const StrongPtr<ValuePool>& pool) const
{
    return key.isPressed(eventIn(pool));
}

bool HotKey::isRepeatedlyPressed(const Key& key, const StrongPtr<ValuePool>& pool) const
{
    return key.isRepeatedlyPressed(eventIn(pool));
}

void HotKey::setHotKey(char key, const StrongPtr<ValuePool>& pool)
{
    if (const StrongPtr<VSlot>& slot = m_hotkey.slot()) {
        const StrongPtr<VValueBase> found = slot->getValueBase(pool);
        VTypedValueBase<char>* const typed = VTypedValueBase<char>::cast(found.get());
        if (typed && typed->setValue(key))
            slot->parameter()->notifyValueChange(found, pool, slot->member());
    }
    HotKeyMap().emplace(key, this);
}

bool HotKey::HotKeyIsPressed(const StrongPtr<ValuePool>& pool)
{
    Key key{keyIn(pool), m_armed};
    if (key.key == 0)
        return false;
    const VInteractionEvent event = eventIn(pool);
    const bool result = key.isPressed(event);
    m_armed = key.armed;
    // Other events neither depend on the key nor change it.
    if (VFrame* const frame = pool ? pool->runningFrame() : nullptr;
        frame && !(event.keyText.empty() && event.armingKeyText.empty()))
        frame->usesState();
    return result;
}

bool HotKey::HotKeyIsRepeatedlyPressed(const StrongPtr<ValuePool>& pool) const
{
    const Key key{keyIn(pool), m_armed};
    return key.key != 0 && key.isRepeatedlyPressed(eventIn(pool));
}

} // namespace Orla
