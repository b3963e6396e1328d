#include "Catalogue.hpp"

#include <earth/ChartPlaces.hpp>

#include <fathom/GyrePhysicalSpacePoint.hpp>

#include <trellis/VObjectCreator.hpp>

#include <utility>
#include <vector>

namespace Quakes {

using Orla::describe;
using Orla::StrongPtr;

/// Publishes the hypocentres of a catalogue in the chart of the network, and the
/// hypocentre of the strongest event as `strongest`; of several, the latest. Events of
/// unknown depth count as on the surface.
class QuakePlaces : public Orla::VObject, public Earth::ChartPlaces {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        publishCharts(pool);
        const Catalogue catalogue = m_catalogue.value(pool);
        std::vector<ChartPlaces::point> places;
        places.reserve(catalogue.size());
        ChartPlaces::point strongest;
        double magnitude = 0;
        bool isFirst = true;
        for (std::size_t i = 0; i < catalogue.size(); ++i) {
            const Quake& quake = catalogue[i];
            places.emplace_back(quake.longitude, quake.latitude, 0 - 1000 * quake.depth.value_or(0));
            if (quake.magnitude && (isFirst || *quake.magnitude >= magnitude)) {
                strongest = places.back();
                magnitude = *quake.magnitude;
                isFirst = false;
            }
        }
        const Earth::Chart chart = chartIn(pool);
        give(pool, chart, std::move(places));
        m_strongest(pool) <<= isFirst ? ChartPlaces::point{} : chart.fromGeographic(strongest);
        return true;
    }

private:
    Orla::TypedSlot<Catalogue> m_catalogue{this, "catalog", Catalogue{},
                                           describe("The events whose places are published.")};
    Orla::VOutput<ChartPlaces::point> m_strongest{this, "strongest", ChartPlaces::point{},
                                                  describe("The place of the strongest event in the chart.")};
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::QuakePlaces> quakePlacesType{
    "QuakePlaces", Orla::describeType("Publishes the places of earthquakes in the chart of the network.")
                       .category("Earthquakes")
                       .keywords("hypocentre", "coordinates")};

} // namespace
