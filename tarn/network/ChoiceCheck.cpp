#include <tarn/network/ChoiceCheck.hpp>

#include <tarn/text/Messages.hpp>
#include <tarn/types/Choices.hpp>

#include <algorithm>
#include <string>
#include <utility>

namespace Tarn {

namespace {

using Orla::StrongPtr;
using Strings = std::vector<std::string>;

struct Selected {
    Strings strings;
    Strings choices;
};

Selected selectedIn(Orla::VValueBase& value)
{
    if (const OneOf one = contentOf<OneOf>(value))
        return {one->selection.empty() ? Strings{} : Strings{one->selection}, {one->begin(), one->end()}};
    if (const SomeOf some = contentOf<SomeOf>(value))
        return {{some->selection->begin(), some->selection->end()}, {some->begin(), some->end()}};
    return {};
}

// The name of the object may have changed since the text was set.
std::string descriptionOf(const Network::Choice& choice)
{
    if (!choice.description.empty())
        return choice.description;
    const Orla::VSlotContainer* const container = choice.input->container();
    const Orla::VObject* const object = container ? container->object() : nullptr;
    return (object ? "object " + inQuotes(object->Name()) + ", " : std::string()) + "input "
           + inQuotes(choice.input->name());
}

} // namespace

bool isSelection(const std::type_info& type) noexcept
{
    return type == typeid(OneOf) || type == typeid(SomeOf);
}

ChoiceCheck::ChoiceCheck(const std::vector<Network::Choice>& choices)
{
    for (const Network::Choice& choice : choices)
        m_entries.push_back({choice});
}

void ChoiceCheck::replace(const Network::Choice& choice)
{
    std::erase_if(m_entries, [&](const Entry& each) { return each.choice.input == choice.input; });
    m_entries.push_back({choice});
}

void ChoiceCheck::addFaults(const StrongPtr<Orla::ValuePool>& pool, Faults& faults)
{
    for (auto& [choice, seen] : m_entries) {
        const StrongPtr<Orla::VValueBase> value = choice.input->getValueBase(pool);
        if (!value || std::exchange(seen, value->age().stamp()) == value->age().stamp())
            continue;
        const Strings offered = selectedIn(*value).choices;
        if (offered.empty())
            continue;
        const auto wanted = choice.wanted ? choice.wanted : choice.input->ownParameter()->DefaultValue();
        for (const std::string& each : selectedIn(*wanted).strings) {
            if (std::ranges::find(offered, each) != offered.end())
                continue;
            const std::string near = nearest(each, offered);
            faults.add(FaultKind::Input, choice.place,
                       descriptionOf(choice) + ": " + inQuotes(each) + " is not among the "
                           + counted(offered.size(), "choice")
                           + (near.empty() ? "" : "; did you mean " + inQuotes(near) + "?"));
        }
    }
}

} // namespace Tarn
