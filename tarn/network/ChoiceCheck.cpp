#include <tarn/network/ChoiceCheck.hpp>

#include <tarn/text/Messages.hpp>

#include <fathom/VMultipleStringList.hpp>
#include <fathom/VStringList.hpp>

#include <algorithm>
#include <string>
#include <utility>

namespace Tarn {

namespace {

using Loam::StringList;
using Orla::StrongPtr;
using OneOf = StrongPtr<Orla::StringSelection, StringList>;
using SomeOf = StrongPtr<Orla::MultipleStringSelection, StringList>;
using Strings = std::vector<std::string>;

struct Selected {
    Strings strings;
    Strings choices;
};

template<class Selection>
Selection contentOf(Orla::VValueBase& value)
{
    Selection selection;
    if (const auto* const typed = Orla::VTypedValueBase<Selection>::cast(&value))
        typed->getValue(selection);
    return selection;
}

Selected selectedIn(Orla::VValueBase& value)
{
    if (const OneOf one = contentOf<OneOf>(value))
        return {one->selection.empty() ? Strings{} : Strings{one->selection}, {one->begin(), one->end()}};
    if (const SomeOf some = contentOf<SomeOf>(value))
        return {{some->selection->begin(), some->selection->end()}, {some->begin(), some->end()}};
    return {};
}

} // namespace

void ChoiceCheck::addFaults(const StrongPtr<Orla::ValuePool>& pool, Faults& faults)
{
    for (std::size_t number = 0; number < m_seen.size(); ++number) {
        const Network::Choice& choice = m_network.choices[number];
        const StrongPtr<Orla::VValueBase> value = choice.input->getValueBase(pool);
        if (!value || std::exchange(m_seen[number], value->age().stamp()) == value->age().stamp())
            continue;
        const Strings offered = selectedIn(*value).choices;
        if (offered.empty())
            continue;
        for (const std::string& wanted : selectedIn(*choice.input->ownParameter()->DefaultValue()).strings) {
            if (std::ranges::find(offered, wanted) != offered.end())
                continue;
            const std::string near = nearest(wanted, offered);
            faults.add(choice.place, choice.description + ": " + inQuotes(wanted) + " is not among the "
                                         + counted(offered.size(), "choice")
                                         + (near.empty() ? "" : "; did you mean " + inQuotes(near) + "?"));
        }
    }
}

} // namespace Tarn
