#include <tarn/network/OutputReference.hpp>

#include <tarn/network/SlotLookup.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/types/DescriptionCheck.hpp>

#include <trellis/VScheduler.hpp>
#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueComponents.hpp>

#include <stdexcept>
#include <typeinfo>

namespace Tarn {

using Loam::Failure;
using Loam::Result;
using Orla::StrongPtr;

Result<OutputReference> OutputReference::find(const Orla::VObject& object, const std::string& description,
                                              std::string_view text)
{
    const StrongPtr<Orla::VSlot> output = findSlotAtStart(object.outputs(), text, '.');
    if (!output) {
        const std::string name(text.substr(0, text.find('.')));
        return Failure{
            description + " has no output " + inQuotes(name)
            + (object.findSlot(name) ? "; that is an input" : insteadOf(name, visibleNamesOf(object.outputs())))};
    }
    if (isPrivateState(*output))
        return Failure{"output " + inQuotes(output->name()) + " of " + description + " is private state"};
    const std::size_t end = output->name().size();
    if (end == text.size())
        return OutputReference{output, {}};
    if (end + 1 == text.size())
        return Failure{"found nothing after the last dot, expected the name of a component"};
    return OutputReference{output, std::string(text.substr(end + 1))};
}

Result<void> OutputReference::checkMember() const
{
    const std::type_info& type = output->type();
    if (Orla::VValueComponents::typeOf(type, member))
        return {};
    return Failure{"values of type " + Orla::VTypeLabel::of(type) + " have no component " + inQuotes(member)
                   + insteadOf(member, Orla::VValueComponents::names(type))};
}

namespace {

const Orla::VObject* objectOf(const Orla::VSlot& output)
{
    const Orla::VSlotContainer* const container = output.container();
    return container ? container->object() : nullptr;
}

std::string reasonOfFailure(const Orla::VObject& object, const StrongPtr<Orla::ValuePool>& pool)
{
    for (const Orla::VScheduler::Failure& failure : Orla::VScheduler::failures(pool)) {
        if (failure.object.get() == &object)
            return object.typeAndName() + " failed" + (failure.reason.empty() ? "" : ": " + failure.reason);
    }
    std::string message = object.typeAndName() + " waits";
    if (const auto sources = Orla::VScheduler::waitingFor(object, pool); !sources.empty())
        message += " for " + sources.front()->typeAndName() + ", which failed";
    return message;
}

} // namespace

bool OutputReference::hasResult(const StrongPtr<Orla::ValuePool>& pool) const
{
    using State = Orla::VScheduler::State;
    const Orla::VObject* const object = objectOf(*output);
    if (!object || output->hasFlag(Orla::VSlot::StaysValid))
        return true;
    const State state = Orla::VScheduler::stateOf(*object, pool);
    return state != State::Failed && state != State::Waiting;
}

Result<void> OutputReference::checkResult(const StrongPtr<Orla::ValuePool>& pool) const
{
    return hasResult(pool) ? Result<void>{} : Failure{reasonOfFailure(*objectOf(*output), pool)};
}

Result<StrongPtr<Orla::VValueBase>> OutputReference::value(const StrongPtr<Orla::ValuePool>& pool) const
{
    if (const Result<void> computed = checkResult(pool); !computed)
        return Failure{computed.reason()};
    return Loam::attempt([&] {
        const StrongPtr<Orla::VValueBase> value = output->getLocalValue(pool);
        const StrongPtr<Orla::VValueBase> part = value && !member.empty() ? value->component(member) : value;
        if (!part)
            throw std::runtime_error("it has no value");
        return part->copy();
    });
}

Result<std::string> OutputReference::text(const StrongPtr<Orla::ValuePool>& pool) const
{
    if (const Result<void> computed = checkResult(pool); !computed)
        return Failure{computed.reason()};
    return Loam::attempt([&] {
        StrongPtr<Orla::VValueBase> value = output->getLocalValue(pool);
        if (value && !member.empty())
            value = value->component(member);
        if (!value)
            throw std::runtime_error("it has no value");
        return value->Text();
    });
}

} // namespace Tarn
