#include <earth/PlaneArea.hpp>

#include <earth/DateLine.hpp>
#include <earth/Degree.hpp>
#include <earth/StaysLoaded.hpp>

#include <geos_c.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

namespace Earth {

namespace {

[[maybe_unused]] const bool geosStays = staysLoaded(reinterpret_cast<void*>(&GEOS_init_r));

struct Destroy {
    GEOSContextHandle_t context = nullptr;
    void operator()(GEOSGeometry* geometry) const { GEOSGeom_destroy_r(context, geometry); }
};

PlaneArea::Bounds boundsOf(const std::vector<LonLat>& places)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    PlaneArea::Bounds bounds{infinity, infinity, -infinity, -infinity};
    for (const LonLat& place : places) {
        bounds.west = std::min(bounds.west, place.longitude);
        bounds.south = std::min(bounds.south, place.latitude);
        bounds.east = std::max(bounds.east, place.longitude);
        bounds.north = std::max(bounds.north, place.latitude);
    }
    return bounds;
}

// Calls `use(places)` with the places shifted by each number of whole turns with which they
// may meet the bounds.
template<class Use>
void forEachTurn(const std::vector<LonLat>& places, const PlaneArea::Bounds& bounds, Use&& use)
{
    const PlaneArea::Bounds own = boundsOf(places);
    if (!(own.south <= bounds.north && own.north >= bounds.south))
        return;
    const double last = std::floor((bounds.east - own.west) / wholeTurn);
    for (double turn = std::ceil((bounds.west - own.east) / wholeTurn); turn <= last; ++turn) {
        std::vector<LonLat> shifted = places;
        for (LonLat& place : shifted)
            place.longitude += turn * wholeTurn;
        use(shifted);
    }
}

} // namespace

// The geometry and its context, which one thread may use at a time.
struct PlaneArea::State {
    using Geometry = std::unique_ptr<GEOSGeometry, Destroy>;

    State() : context{GEOS_init_r()} { GEOSContext_setErrorMessageHandler_r(context, keepMessage, &message); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State()
    {
        GEOSPreparedGeom_destroy_r(context, prepared);
        area.reset();
        GEOS_finish_r(context);
    }

    Geometry owned(GEOSGeometry* geometry) const
    {
        if (!geometry)
            throw std::runtime_error{"GEOS cannot compute an area: " + message};
        return {geometry, Destroy{context}};
    }

    GEOSCoordSequence* sequence(const std::vector<LonLat>& places, bool isClosed) const
    {
        const std::size_t count = places.size() + (isClosed ? 1 : 0);
        GEOSCoordSequence* const result = GEOSCoordSeq_create_r(context, static_cast<unsigned>(count), 2);
        for (std::size_t i = 0; i < count; ++i) {
            const LonLat& place = places[i % places.size()];
            GEOSCoordSeq_setXY_r(context, result, static_cast<unsigned>(i), place.longitude, place.latitude);
        }
        return result;
    }

    // Returns what a closed ring in the plane encloses by the even-odd rule.
    Geometry polygon(const Ring& ring) const
    {
        Geometry result = owned(
            GEOSGeom_createPolygon_r(context, GEOSGeom_createLinearRing_r(context, sequence(ring, true)), nullptr, 0));
        if (GEOSisValid_r(context, result.get()) == 1)
            return result;
        const Geometry valid = owned(GEOSMakeValid_r(context, result.get()));
        std::vector<GEOSGeometry*> polygons; // without the lines that are left of spikes
        forEachPart(valid.get(), [&](const GEOSGeometry* part, int type) {
            if (type == GEOS_POLYGON)
                polygons.push_back(GEOSGeom_clone_r(context, part));
        });
        return owned(GEOSGeom_createCollection_r(context, GEOS_MULTIPOLYGON, polygons.data(),
                                                 static_cast<unsigned>(polygons.size())));
    }

    void setArea(Geometry geometry)
    {
        if (GEOSisEmpty_r(context, geometry.get()) != 0)
            throw std::runtime_error{"found an empty area"};
        area = std::move(geometry);
        prepared = GEOSPrepare_r(context, area.get());
        GEOSGeom_getXMin_r(context, area.get(), &bounds.west);
        GEOSGeom_getYMin_r(context, area.get(), &bounds.south);
        GEOSGeom_getXMax_r(context, area.get(), &bounds.east);
        GEOSGeom_getYMax_r(context, area.get(), &bounds.north);
    }

    std::vector<LonLat> places(const GEOSGeometry* line) const
    {
        const GEOSCoordSequence* const found = GEOSGeom_getCoordSeq_r(context, line);
        unsigned count = 0;
        GEOSCoordSeq_getSize_r(context, found, &count);
        std::vector<LonLat> result(count);
        for (unsigned i = 0; i < count; ++i)
            GEOSCoordSeq_getXY_r(context, found, i, &result[i].longitude, &result[i].latitude);
        return result;
    }

    // Calls `use(part)` with each part of a collection that has no parts.
    template<class Use>
    void forEachPart(const GEOSGeometry* geometry, Use&& use) const
    {
        const int count = GEOSGetNumGeometries_r(context, geometry);
        for (int i = 0; i < count; ++i) {
            const GEOSGeometry* const part = GEOSGetGeometryN_r(context, geometry, i);
            if (GEOSGeomTypeId_r(context, part) >= GEOS_MULTIPOINT)
                forEachPart(part, use);
            else
                use(part, GEOSGeomTypeId_r(context, part));
        }
    }

    void appendRings(std::vector<Ring>& rings, const GEOSGeometry* geometry) const
    {
        const auto append = [&](const GEOSGeometry* closed) {
            Ring ring = places(closed);
            ring.pop_back();
            rings.push_back(std::move(ring));
        };
        forEachPart(geometry, [&](const GEOSGeometry* part, int type) {
            if (type != GEOS_POLYGON || GEOSisEmpty_r(context, part) != 0)
                return;
            append(GEOSGetExteriorRing_r(context, part));
            for (int i = 0; i < GEOSGetNumInteriorRings_r(context, part); ++i)
                append(GEOSGetInteriorRingN_r(context, part, i));
        });
    }

    static void keepMessage(const char* text, void* kept) { *static_cast<std::string*>(kept) = text; }

    std::string message;
    GEOSContextHandle_t context;
    Geometry area;
    const GEOSPreparedGeometry* prepared = nullptr;
    Bounds bounds;
    mutable std::mutex mutex;
};

PlaneArea::PlaneArea(const std::vector<Ring>& rings)
{
    if (rings.empty())
        return;
    const auto state = std::make_shared<State>();
    std::vector<State::Geometry> polygons;
    for (const Ring& ring : rings)
        polygons.push_back(state->polygon(ring));
    std::vector<GEOSGeometry*> pointers;
    pointers.reserve(polygons.size()); // pointers that were released must not be lost
    for (State::Geometry& polygon : polygons)
        pointers.push_back(polygon.release());
    const State::Geometry all = state->owned(GEOSGeom_createCollection_r(
        state->context, GEOS_GEOMETRYCOLLECTION, pointers.data(), static_cast<unsigned>(pointers.size())));
    state->setArea(state->owned(GEOSUnaryUnion_r(state->context, all.get())));
    m_state = state;
}

PlaneArea PlaneArea::rectangle(const Bounds& bounds)
{
    return PlaneArea{{{{bounds.west, bounds.south},
                       {bounds.east, bounds.south},
                       {bounds.east, bounds.north},
                       {bounds.west, bounds.north}}}};
}

PlaneArea::Bounds PlaneArea::bounds() const noexcept
{
    return m_state ? m_state->bounds : Bounds{};
}

double PlaneArea::area() const
{
    double result = 0;
    if (m_state) {
        const std::lock_guard lock{m_state->mutex};
        GEOSArea_r(m_state->context, m_state->area.get(), &result);
    }
    return result;
}

std::vector<Ring> PlaneArea::rings() const
{
    std::vector<Ring> result;
    if (m_state) {
        const std::lock_guard lock{m_state->mutex};
        m_state->appendRings(result, m_state->area.get());
    }
    return result;
}

bool PlaneArea::contains(LonLat& place) const
{
    if (!m_state || !std::isfinite(place.longitude) || !std::isfinite(place.latitude))
        return false;
    const std::lock_guard lock{m_state->mutex};
    bool isInside = false;
    forEachTurn({place}, m_state->bounds, [&](const std::vector<LonLat>& shifted) {
        if (isInside)
            return;
        const State::Geometry point =
            m_state->owned(GEOSGeom_createPointFromXY_r(m_state->context, shifted[0].longitude, shifted[0].latitude));
        isInside = GEOSPreparedIntersects_r(m_state->context, m_state->prepared, point.get()) == 1;
        if (isInside)
            place = shifted[0];
    });
    return isInside;
}

std::vector<Ring> PlaneArea::clipped(const Ring& ring) const
{
    std::vector<Ring> result;
    if (!m_state || ring.size() < 3)
        return result;
    const std::lock_guard lock{m_state->mutex};
    forEachTurn(unrolled(ring), m_state->bounds, [&](const Ring& shifted) {
        const State::Geometry polygon = m_state->polygon(shifted);
        if (GEOSPreparedContains_r(m_state->context, m_state->prepared, polygon.get()) == 1)
            result.push_back(shifted);
        else if (GEOSPreparedIntersects_r(m_state->context, m_state->prepared, polygon.get()) == 1)
            m_state->appendRings(
                result, m_state->owned(GEOSIntersection_r(m_state->context, polygon.get(), m_state->area.get())).get());
    });
    return result;
}

std::vector<Line> PlaneArea::clippedLine(const Line& line) const
{
    std::vector<Line> result;
    if (!m_state || line.size() < 2)
        return result;
    const std::lock_guard lock{m_state->mutex};
    forEachTurn(unrolledLine(line), m_state->bounds, [&](const Line& shifted) {
        const State::Geometry path =
            m_state->owned(GEOSGeom_createLineString_r(m_state->context, m_state->sequence(shifted, false)));
        if (GEOSPreparedContains_r(m_state->context, m_state->prepared, path.get()) == 1) {
            result.push_back(shifted);
        } else if (GEOSPreparedIntersects_r(m_state->context, m_state->prepared, path.get()) == 1) {
            const State::Geometry parts =
                m_state->owned(GEOSIntersection_r(m_state->context, path.get(), m_state->area.get()));
            // Self-crossing lines come back in pieces.
            const State::Geometry merged = m_state->owned(GEOSLineMerge_r(m_state->context, parts.get()));
            m_state->forEachPart(merged.get(), [&](const GEOSGeometry* part, int type) {
                if (type == GEOS_LINESTRING && GEOSisEmpty_r(m_state->context, part) == 0)
                    result.push_back(m_state->places(part));
            });
        }
    });
    return result;
}

} // namespace Earth
