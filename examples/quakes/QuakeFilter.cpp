#include "Catalogue.hpp"

#include <fathom/Double.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VFlagList.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VObjectStatus.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VStringList.hpp>

#include <trellis/VObjectCreator.hpp>

#include <algorithm>
#include <limits>
#include <set>
#include <string>
#include <vector>

namespace Quakes {

namespace {

using Orla::StrongPtr;
using OneOf = StrongPtr<Orla::StringSelection, Loam::StringList>;
using SomeOf = StrongPtr<Orla::MultipleStringSelection, Loam::StringList>;

constexpr double infinity = std::numeric_limits<double>::infinity();

/// The choice that accepts every type of magnitude.
constexpr char AnyType[] = "any";

// Returns the flag of a kind. Flags have no blanks: "quarry_blast".
std::string flagOf(std::string kind)
{
    std::ranges::replace(kind, ' ', '_');
    return kind;
}

std::set<std::string> distinct(const Catalogue& catalogue, std::string Quake::*part)
{
    std::set<std::string> texts;
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        if (!(catalogue[i].*part).empty())
            texts.insert(catalogue[i].*part);
    }
    return texts;
}

std::string listed(const std::set<std::string>& texts)
{
    std::string list;
    for (const std::string& text : texts)
        list += (list.empty() ? "" : ", ") + text;
    return list;
}

} // namespace

/// Selects the events that have happened by the current time and match its inputs. The
/// input `range` gives the seconds since 1970 at the times 0 and 1.
///
/// - `magnitude`: a range, both ends inclusive. `-inf:inf` accepts all events; any other
///   range excludes events of unknown magnitude.
/// - `networks`: the networks that reported the event, `{ci}{us}`; an empty selection
///   accepts all.
/// - `magnitudeType`: how the magnitude was measured, `mww@mww|`. The choices come from
///   the data. A selection is kept when the data changes.
/// - `kinds`: flags such as `+earthquake -explosion`, with "_" for blanks. If any flag is
///   on, only events of those kinds pass; otherwise all events except those of kinds that
///   are off.
///
/// The status warns about selections that the data does not have.
class QuakeFilter : public Orla::VObject, public Orla::TimeDependent, public Orla::StatusIndicator {
public:
    QuakeFilter(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{0}}
        , StatusIndicator{this, "", 0, Slotname}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const double now = getTime(pool, 0, Orla::Range{});
        const Catalogue happened = passing(pool).until(now);
        m_selected(pool) <<= happened;
        m_count(pool) <<= static_cast<double>(happened.size());
        return true;
    }

private:
    struct Wanted {
        Catalogue all;
        Orla::Range magnitude{-infinity, infinity};
        std::vector<std::string> networks;
        std::string magnitudeType;
        Orla::FlagList kinds;

        friend bool operator==(const Wanted&, const Wanted&) = default;
    };

    // The choices that the data offers.
    struct Choices {
        std::set<std::string> networks;
        std::set<std::string> magnitudeTypes;
        std::set<std::string> kinds;
    };

    // Applies everything except the time. Recomputes only if an input has changed.
    const Catalogue& passing(const StrongPtr<Orla::ValuePool>& pool)
    {
        Wanted wanted;
        wanted.all = m_all.value(pool);
        if (!(wanted.all == m_last.all))
            m_choices = choicesOf(wanted.all);
        wanted.magnitude = m_magnitude.value(pool);
        wanted.networks = offerNetworks(pool);
        wanted.magnitudeType = offerMagnitudeTypes(pool);
        wanted.kinds = m_kinds.value(pool);
        if (!(wanted == m_last)) {
            m_passing = wanted.all.withMagnitude(wanted.magnitude).where([&wanted](const Quake& quake) {
                return hasWantedNetwork(wanted.networks, quake) && hasWantedType(wanted.magnitudeType, quake)
                       && isWantedKind(wanted.kinds, quake);
            });
            m_last = wanted;
        }
        warnAboutMissingChoices(pool, wanted);
        return m_passing;
    }

    static Choices choicesOf(const Catalogue& all)
    {
        Choices choices{distinct(all, &Quake::net), distinct(all, &Quake::magnitudeType), {}};
        for (const std::string& kind : distinct(all, &Quake::type))
            choices.kinds.insert(flagOf(kind));
        return choices;
    }

    static bool hasWantedNetwork(const std::vector<std::string>& networks, const Quake& quake)
    {
        return networks.empty() || std::ranges::find(networks, quake.net) != networks.end();
    }

    static bool hasWantedType(const std::string& type, const Quake& quake)
    {
        return type.empty() || type == AnyType || type == quake.magnitudeType;
    }

    static bool isWantedKind(const Orla::FlagList& kinds, const Quake& quake)
    {
        bool isMentioned = false;
        const bool isOn = kinds(flagOf(quake.type), isMentioned);
        if (isMentioned)
            return isOn;
        return std::ranges::none_of(kinds, [](const auto& flag) { return flag.second; });
    }

    // Returns the selected type. Publishes the types of the data unless the input is
    // connected.
    std::string offerMagnitudeTypes(const StrongPtr<Orla::ValuePool>& pool) const
    {
        const OneOf held = m_magnitudeType.value(pool);
        const std::string chosen = held ? held->selection : std::string();
        if (m_magnitudeType.slot()->isConnected())
            return chosen;
        const auto fresh = Loam::makeStrong<Orla::StringSelection>(AnyType);
        for (const std::string& type : m_choices.magnitudeTypes)
            fresh->append(type);
        // Keeps a selection that the data does not have: the next data may have it.
        if (!chosen.empty())
            fresh->selection = chosen;
        return updateSelection(m_magnitudeType, pool, fresh);
    }

    // As above, for the networks. Returns the selected networks in order.
    std::vector<std::string> offerNetworks(const StrongPtr<Orla::ValuePool>& pool) const
    {
        const StrongPtr<Orla::VValueBase> value = m_networks.slot()->getLocalValue(pool);
        auto* const typed = Orla::VTypedValueBase<SomeOf>::cast(value.get());
        SomeOf held;
        if (typed)
            typed->getValue(held);
        const auto fresh = Loam::makeStrong<Orla::MultipleStringSelection>();
        for (const std::string& network : m_choices.networks)
            fresh->append(network);
        if (held)
            *fresh->selection = *held->selection;
        const bool isOther = !held || !(*held == *fresh);
        if (isOther && !m_networks.slot()->isConnected() && typed && typed->setValue(fresh))
            m_networks.parameter()->notifyValueChange(value, pool);
        return {fresh->selection->begin(), fresh->selection->end()};
    }

    void warnAboutMissingChoices(const StrongPtr<Orla::ValuePool>& pool, const Wanted& wanted) const
    {
        std::string warning;
        const auto check = [&warning](const char* what, const std::string& name, const std::set<std::string>& known) {
            if (known.empty() || known.contains(name))
                return;
            warning += std::string(warning.empty() ? "" : "<BR>") + "no event has the " + what + " " + escaped(name)
                       + "; the data has " + escaped(listed(known));
        };
        for (const std::string& network : wanted.networks)
            check("network", network, m_choices.networks);
        if (wanted.magnitudeType != AnyType)
            check("magnitude type", wanted.magnitudeType, m_choices.magnitudeTypes);
        for (const auto& [name, isOn] : wanted.kinds)
            check("kind", name, m_choices.kinds);
        if (warning.empty())
            setStatusInfo(pool, "");
        else
            setStatusWarning(pool, warning);
    }

    Orla::TypedSlot<Catalogue> m_all{this, "catalog", Catalogue{}, 0};
    Orla::TypedSlot<Orla::Range> m_magnitude{this, "magnitude", Orla::Range{-infinity, infinity}, 0};
    Orla::TypedSlot<SomeOf> m_networks{this, "networks", Loam::makeStrong<Orla::MultipleStringSelection>(), 0};
    Orla::TypedSlot<OneOf> m_magnitudeType{this, "magnitudeType", Loam::makeStrong<Orla::StringSelection>(), {}, 0,
                                           true};
    Orla::TypedSlot<bool[]> m_kinds{this, "kinds", "", 0};
    Orla::VOutput<Catalogue> m_selected{this, "catalog", Catalogue{}};
    Orla::VOutput<double> m_count{this, "count", 0.0};

    Wanted m_last;
    Choices m_choices;
    Catalogue m_passing;
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::QuakeFilter> quakeFilterType{"QuakeFilter"};

} // namespace
