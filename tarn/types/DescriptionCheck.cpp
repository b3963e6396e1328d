#include <tarn/types/DescriptionCheck.hpp>

#include <tarn/text/Messages.hpp>

#include <fathom/VNumbers.hpp>

#include <trellis/VSlotDescription.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>

namespace Tarn {

namespace {

using Loam::Failure;
using Loam::Result;
using Orla::StrongPtr;
using Orla::VSlot;
using Orla::VSlotDescription;
using Orla::VValueBase;

// Returns a value of \p input with that text, or null if the text is refused.
StrongPtr<VValueBase> valueOf(const VSlot& input, const std::string& text)
{
    const StrongPtr<VValueBase> value = input.ownParameter()->newValue();
    const Result<bool> accepted = Loam::attempt([&] { return value->setValueFromText(text); });
    return accepted && *accepted ? value : nullptr;
}

Result<void> checkCondition(const Orla::VObject& object, const VSlot& slot, const VSlotDescription& description)
{
    const std::string& name = description.parts().conditionInput;
    if (name.empty())
        return {};
    const StrongPtr<VSlot> input = object.findSlot(name);
    if (!input)
        return Failure{"its condition refers to the input " + inQuotes(name) + ", which does not exist"};
    if (input.get() == &slot)
        return Failure{"its condition refers to the input itself"};
    for (const std::string& text : description.parts().conditionValues) {
        if (!valueOf(*input, text))
            return Failure{"its condition refers to the text " + inQuotes(text) + ", which the input " + inQuotes(name)
                           + " refuses"};
    }
    return {};
}

Result<void> checkSlots(const Orla::VObject& object, const Orla::VSlotSet& slots, const char* kind)
{
    for (const StrongPtr<VSlot>& slot : slots) {
        const VSlotDescription* const description = slot->description();
        if (!description)
            continue;
        if (const Result<void> fine = checkLimits(*slot, *slot->ownParameter()->newValue()); !fine)
            return Failure{kind + inQuotes(slot->name())
                           + ": its initial value is outside its limits: " + fine.reason()};
        if (const Result<void> fine = checkCondition(object, *slot, *description); !fine)
            return Failure{kind + inQuotes(slot->name()) + ": " + fine.reason()};
    }
    return {};
}

} // namespace

Result<void> checkLimits(const VSlot& slot, VValueBase& value)
{
    const VSlotDescription* const description = slot.description();
    const std::string limits = description ? description->limitsText() : std::string();
    if (limits.empty())
        return {};
    const std::vector<double> numbers = numbersOf(value);
    const auto outside = std::ranges::find_if(numbers, [&](double number) { return !description->accepts(number); });
    if (outside == numbers.end())
        return {};
    return Failure{"found " + description->withUnit(Loam::numberText(*outside)) + ", expected "
                   + (numbers.size() == 1 ? "a number " : "numbers ") + limits};
}

Result<void> checkDescriptions(const Orla::VObject& object)
{
    const Result<void> inputs = checkSlots(object, object.inputs(), "input ");
    return inputs ? checkSlots(object, object.outputs(), "output ") : inputs;
}

bool isApplicable(const Orla::VObject& object, const VSlot& slot)
{
    const VSlotDescription* const description = slot.description();
    const StrongPtr<VSlot> input =
        description ? object.findSlot(description->parts().conditionInput) : StrongPtr<VSlot>{};
    if (!input || input->isConnected())
        return true;
    const StrongPtr<VValueBase> current = input->ownParameter()->DefaultValue();
    return std::ranges::any_of(description->parts().conditionValues, [&](const std::string& text) {
        const StrongPtr<VValueBase> value = valueOf(*input, text);
        return value && value->Text() == current->Text();
    });
}

bool isPrivateState(const VSlot& slot)
{
    const VSlotDescription* const description = slot.description();
    return description && description->parts().visibility == Orla::VVisibility::PrivateState;
}

} // namespace Tarn
