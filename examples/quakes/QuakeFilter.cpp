#include "Catalogue.hpp"

#include <fathom/Double.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <limits>

namespace Quakes {

/// Selects the events that have happened by the current time and whose magnitude
/// lies in the range of the input `magnitude`, both ends included. The input
/// `range` says which seconds since 1970 the times 0 and 1 stand for.
///
/// Without a magnitude given (`-inf:inf`) all events are selected, those of
/// unknown magnitude too; any other range leaves the latter out.
class QuakeFilter : public Orla::VObject, public Orla::TimeDependent {
public:
    QuakeFilter(const std::string& name, int level,
                const Orla::StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}, TimeDependent{"time", "range", preferences, Orla::VTime{0}}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const Orla::StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const double now = getTime(pool, 0, Orla::Range{});
        const Catalogue happened = withMagnitude(m_all.value(pool), m_magnitude.value(pool)).until(now);
        m_selected(pool) <<= happened;
        m_count(pool) <<= static_cast<double>(happened.size());
        return true;
    }

private:
    // Magnitudes are looked through once and not at every step of time.
    const Catalogue& withMagnitude(const Catalogue& all, const Orla::Range& magnitude)
    {
        if (!(all == m_lastAll && magnitude == m_lastMagnitude)) {
            m_lastSelected = all.withMagnitude(magnitude);
            m_lastAll = all;
            m_lastMagnitude = magnitude;
        }
        return m_lastSelected;
    }

    static constexpr double infinity = std::numeric_limits<double>::infinity();

    Orla::TypedSlot<Catalogue> m_all{this, "catalog", Catalogue{}, 0};
    Orla::TypedSlot<Orla::Range> m_magnitude{this, "magnitude", Orla::Range{-infinity, infinity}, 0};
    Orla::VOutput<Catalogue> m_selected{this, "catalog", Catalogue{}};
    Orla::VOutput<double> m_count{this, "count", 0.0};

    Catalogue m_lastAll;
    Orla::Range m_lastMagnitude{-infinity, infinity};
    Catalogue m_lastSelected;
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::QuakeFilter> quakeFilterType{"QuakeFilter"};

} // namespace
