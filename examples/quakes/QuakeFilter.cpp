#include "Catalogue.hpp"

#include <fathom/Double.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VFlagList.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VStringList.hpp>

#include <trellis/VObjectCreator.hpp>

#include <algorithm>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace Quakes {

namespace {

using Orla::describe;
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

// A misspelt kind would select nothing, or everything.
void requireKinds(const Orla::FlagList& wanted, const std::set<std::string>& known)
{
    for (const auto& [name, isOn] : wanted) {
        if (known.empty() || known.contains(name))
            continue;
        std::string list;
        for (const std::string& kind : known)
            list += (list.empty() ? "" : ", ") + kind;
        throw std::invalid_argument("no event has the kind " + name + "; the data has " + list);
    }
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
/// Fails if no event of the data has one of these kinds.
///
/// The output `matching` has the selected events of all times.
class QuakeFilter : public Orla::VObject, public Orla::TimeDependent {
public:
    QuakeFilter(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}, TimeDependent{"time", "range", preferences, Orla::VTime{0}}
    {
        rangeSlot().slot()->describe(describe("The seconds since 1970 at the times 0 and 1.").in("s"));
    }

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        if (request.hasChanged(m_all) || request.hasChanged(m_magnitude) || request.hasChanged(m_networks)
            || request.hasChanged(m_magnitudeType) || request.hasChanged(m_kinds))
            m_matching(pool) <<= matching(pool);
        const Catalogue happened = m_matching.value(pool).until(getTime(pool, 0, Orla::Range{}));
        m_selected(pool) <<= happened;
        m_count(pool) <<= static_cast<double>(happened.size());
        return true;
    }

private:
    // Applies everything except the time.
    Catalogue matching(const StrongPtr<Orla::ValuePool>& pool) const
    {
        const Catalogue all = m_all.value(pool);
        const std::vector<std::string> networks = offerNetworks(pool, distinct(all, &Quake::net));
        const std::string type = offerMagnitudeTypes(pool, distinct(all, &Quake::magnitudeType));
        const Orla::FlagList kinds = m_kinds.value(pool);
        requireKinds(kinds, flagsOf(all));
        return all.withMagnitude(m_magnitude.value(pool)).where([&](const Quake& quake) {
            return hasWantedNetwork(networks, quake) && hasWantedType(type, quake) && isWantedKind(kinds, quake);
        });
    }

    static std::set<std::string> flagsOf(const Catalogue& all)
    {
        std::set<std::string> flags;
        for (const std::string& kind : distinct(all, &Quake::type))
            flags.insert(flagOf(kind));
        return flags;
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
    std::string offerMagnitudeTypes(const StrongPtr<Orla::ValuePool>& pool, const std::set<std::string>& types) const
    {
        const OneOf held = m_magnitudeType.value(pool);
        const std::string chosen = held ? held->selection : std::string();
        if (m_magnitudeType.slot()->isConnected())
            return chosen;
        const auto fresh = Loam::makeStrong<Orla::StringSelection>(AnyType);
        for (const std::string& type : types)
            fresh->append(type);
        // Keeps a selection that the data does not have: the next data may have it.
        if (!chosen.empty())
            fresh->selection = chosen;
        return updateSelection(m_magnitudeType, pool, fresh);
    }

    // As above, for the networks. Returns the selected networks in order.
    std::vector<std::string> offerNetworks(const StrongPtr<Orla::ValuePool>& pool,
                                           const std::set<std::string>& networks) const
    {
        const StrongPtr<Orla::VValueBase> value = m_networks.slot()->getLocalValue(pool);
        auto* const typed = Orla::VTypedValueBase<SomeOf>::cast(value.get());
        SomeOf held;
        if (typed)
            typed->getValue(held);
        const auto fresh = Loam::makeStrong<Orla::MultipleStringSelection>();
        for (const std::string& network : networks)
            fresh->append(network);
        if (held)
            *fresh->selection = *held->selection;
        const bool isOther = !held || !(*held == *fresh);
        if (isOther && !m_networks.slot()->isConnected() && typed && typed->setValue(fresh))
            m_networks.parameter()->notifyValueChange(value, pool);
        return {fresh->selection->begin(), fresh->selection->end()};
    }

    Orla::TypedSlot<Catalogue> m_all{this, "catalog", Catalogue{}, describe("The events to select from.")};
    Orla::TypedSlot<Orla::Range> m_magnitude{
        this, "magnitude", Orla::Range{-infinity, infinity},
        describe("The magnitudes that pass, both ends inclusive; events of unknown magnitude pass only -inf:inf.")
            .softLimits(0, 10)
            .step(0.1)};
    Orla::TypedSlot<SomeOf> m_networks{this, "networks", Loam::makeStrong<Orla::MultipleStringSelection>(),
                                       describe("The networks whose events pass; none selected means all.")};
    Orla::TypedSlot<OneOf> m_magnitudeType{this, "magnitudeType", Loam::makeStrong<Orla::StringSelection>(),
                                           describe("How the magnitude was measured.")};
    Orla::TypedSlot<bool[]> m_kinds{
        this, "kinds", "", describe("The kinds that pass, such as +earthquake -explosion, with _ for blanks.")};
    Orla::VOutput<Catalogue> m_selected{this, "catalog", Catalogue{},
                                        describe("The selected events that have happened by now.")};
    Orla::VOutput<Catalogue> m_matching{this, "matching", Catalogue{}, describe("The selected events of all times.")};
    Orla::VOutput<double> m_count{this, "count", 0.0,
                                  describe("How many of the selected events have happened by now.")};
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::QuakeFilter> quakeFilterType{
    "QuakeFilter", Orla::describeType("Selects earthquakes by magnitude, network, kind and time.")
                       .category("Earthquakes")
                       .keywords("event", "magnitude", "catalogue")};

} // namespace
