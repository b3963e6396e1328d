#include <tarn/run/RunActions.hpp>

#include <fathom/Action.hpp>
#include <fathom/VValue.hpp>

#include <typeinfo>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Action = StrongPtr<Orla::VAction>;

} // namespace

RunActions RunActions::find()
{
    RunActions actions;
    Orla::VObject::forEachOutput(
        typeid(Action),
        [&actions](const StrongPtr<Orla::VObject>&, const StrongPtr<Orla::VSlot>& output) {
            if (output->name() == "stepped")
                actions.m_stepped.push_back(output);
            else if (output->name() == "finished")
                actions.m_finished.push_back(output);
        },
        "run");
    return actions;
}

bool RunActions::emit(const Outputs& outputs, const StrongPtr<Orla::ValuePool>& pool)
{
    for (const StrongPtr<Orla::VSlot>& output : outputs) {
        const StrongPtr<Orla::VValueBase> value = output->getLocalValue(pool);
        Action action;
        const auto* typed = Orla::VTypedValueBase<Action>::cast(value.get());
        if (typed && typed->getValue(action) && action)
            action->emitAction(pool, output->parameter());
    }
    return !outputs.empty();
}

} // namespace Tarn
