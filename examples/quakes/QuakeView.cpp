#include "Catalogue.hpp"
#include <earth/Ellipsoid.hpp>

#include <fathom/Double.hpp>
#include <fathom/VCamera.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <array>
#include <cstdint>
#include <vector>

namespace Quakes {

using Orla::describe;

/// Counts the events that a camera sees. Each event is a box that extends `reach` metres
/// (50 km by default) from its hypocentre in every direction, in geocentric coordinates.
/// Events of unknown depth count as on the surface. The camera sees distances from `near`
/// to `far`, in metres; `aspect` is the ratio of width to height.
class QuakeView : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const Orla::StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const Catalogue catalogue = m_catalogue.value(pool);

        Orla::Frustum frustum;
        frustum.compute(m_camera.value(pool), m_aspect.value(pool), m_near.value(pool), m_far.value(pool));
        const Corners corners = boxes(catalogue, m_reach.value(pool));
        std::vector<std::int8_t> results(catalogue.size());
        frustum.classify({{corners[0].data(), corners[1].data(), corners[2].data()},
                          {corners[3].data(), corners[4].data(), corners[5].data()}},
                         results.size(), results.data());

        std::array<std::size_t, 3> counts{};
        for (const std::int8_t result : results)
            ++counts[static_cast<std::size_t>(result + 1)];
        m_straddling(pool) <<= static_cast<double>(counts[0]);
        m_outside(pool) <<= static_cast<double>(counts[1]);
        m_inside(pool) <<= static_cast<double>(counts[2]);
        return true;
    }

private:
    // Three coordinates of the minima, then three of the maxima.
    using Corners = std::array<std::vector<double>, 6>;

    static Corners boxes(const Catalogue& catalogue, double reach)
    {
        Corners corners;
        for (std::vector<double>& coordinate : corners)
            coordinate.reserve(catalogue.size());
        for (std::size_t i = 0; i < catalogue.size(); ++i) {
            const Quake& quake = catalogue[i];
            const auto center = Earth::geocentric(quake.longitude, quake.latitude, -1000 * quake.depth.value_or(0));
            for (std::size_t axis = 0; axis < 3; ++axis) {
                corners[axis].push_back(center[axis] - reach);
                corners[3 + axis].push_back(center[axis] + reach);
            }
        }
        return corners;
    }

    Orla::TypedSlot<Catalogue> m_catalogue{this, "catalog", Catalogue{}, describe("The events to count.")};
    Orla::TypedSlot<Orla::VCamera> m_camera{this, "camera", Orla::VCamera{},
                                            describe("The camera that sees them, in geocentric coordinates.")};
    Orla::TypedSlot<double> m_aspect{
        this, "aspect", 1.0, describe("The ratio of the width of the picture to its height.").above(0).finite(), 1};
    Orla::TypedSlot<double> m_near{
        this, "near", 1e5, describe("The distance at which the view begins.").in("m").above(0).finite().logarithmic(),
        1};
    Orla::TypedSlot<double> m_far{
        this, "far", 1e8, describe("The distance at which the view ends.").in("m").above(0).finite().logarithmic(), 1};
    Orla::TypedSlot<double> m_reach{
        this, "reach", 5e4,
        describe("How far an event extends in each direction.").in("m").from(0).finite().softLimits(0, 1e6), 2};
    Orla::VOutput<double> m_inside{this, "inside", 0.0, describe("How many events are completely in view.")};
    Orla::VOutput<double> m_straddling{this, "straddling", 0.0, describe("How many events are partly in view.")};
    Orla::VOutput<double> m_outside{this, "outside", 0.0, describe("How many events are out of view.")};
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::QuakeView> quakeViewType{
    "QuakeView", Orla::describeType("Counts the earthquakes that a camera sees.")
                     .category("Earthquakes")
                     .keywords("frustum", "visible")};

} // namespace
