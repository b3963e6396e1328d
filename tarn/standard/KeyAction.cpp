#include <fathom/Action.hpp>
#include <fathom/HotKey.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

namespace Tarn {

namespace {

using Orla::describe;
using Orla::StrongPtr;
using Action = StrongPtr<Orla::VAction>;

/// Emits an action with the number 3 when its key is pressed. Forwards the actions that
/// reach its input "forward", with their numbers, so other objects can trigger the same
/// effect as the key.
class KeyAction final : public Orla::VObject, public Orla::HotKey {
public:
    KeyAction(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}, HotKey{"event", 0}
    {
    }

    bool update(Orla::VRequest& request, double number) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        if (HotKeyIsPressed(pool))
            m_theAction->emitAction(pool, m_action.parameter());
        if (number != 0)
            Orla::VAction{number}.emitAction(pool, m_action.parameter());
        return true;
    }

private:
    const Action m_theAction = Loam::makeStrong<Orla::VAction>(3.0);
    const Orla::TypedSlot<Action> m_forward{
        this, "forward", Action{}, describe("Actions to pass on, so other objects can trigger the effect of the key.")};
    const Orla::VOutput<Action> m_action{this, "action", m_theAction, describe("Emitted when the key is pressed.")};
};

const Orla::VObjectType<KeyAction> keyActionType{
    "KeyAction",
    Orla::describeType("Emits an action when its key is pressed.").category("Interaction").keywords("keyboard")};

} // namespace

} // namespace Tarn
