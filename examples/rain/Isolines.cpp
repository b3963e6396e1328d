#include "Isolines.hpp"

#include "Squares.hpp"

#include <earth/Degree.hpp>

#include <fathom/VConnectionTypeColors.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <typeinfo>

namespace Rain {

namespace {

using Earth::Line;
using Earth::LonLat;

// The part of an isoline in a square.
struct Segment {
    Squares::Vertex from;
    Squares::Vertex to;
    bool isUsed = false;
};

constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

std::vector<Segment> segmentsOf(const Squares& squares)
{
    std::vector<Segment> segments;
    for (std::size_t row = 0; row < squares.rows(); ++row) {
        for (std::size_t column = 0; column < squares.columns(); ++column) {
            if (!squares.hasValues(column, row))
                continue;
            for (const Squares::Edge& edge : squares.partOf(column, row)) {
                if (edge.side == Squares::Edge::isoline)
                    segments.push_back({edge.from, edge.to});
            }
        }
    }
    return segments;
}

// Joins segments at the vertices that they share. At most one segment begins at a vertex, and
// at most one ends there.
class Tracer {
public:
    Tracer(const Grid& grid, double level) : m_frame{grid.frame()}, m_level{level}
    {
        const Squares squares{grid, level};
        m_segments = segmentsOf(squares);
        m_beginning.assign(squares.vertices(), none);
        m_isEnd.assign(squares.vertices(), false);
        for (std::size_t i = 0; i < m_segments.size(); ++i) {
            m_beginning[m_segments[i].from.id] = static_cast<std::uint32_t>(i);
            m_isEnd[m_segments[i].to.id] = true;
        }
    }

    std::vector<Isoline> trace()
    {
        std::vector<Isoline> lines;
        // Open lines first: a line must be entered at its beginning.
        for (const bool isClosed : {false, true}) {
            for (Segment& first : m_segments) {
                if (!first.isUsed && (isClosed || !m_isEnd[first.from.id]))
                    append(lines, first, isClosed);
            }
        }
        return lines;
    }

private:
    void append(std::vector<Isoline>& lines, Segment& first, bool isClosed)
    {
        Isoline line{m_level, isClosed, {placeOf(first.from)}};
        for (std::uint32_t next = m_beginning[first.from.id]; next != none && !m_segments[next].isUsed;
             next = m_beginning[m_segments[next].to.id]) {
            m_segments[next].isUsed = true;
            // Several crossings at a cell whose value equals the level are one place.
            const LonLat place = placeOf(m_segments[next].to);
            if (!(place == line.places.back()))
                line.places.push_back(place);
        }
        // A line around a single cell whose value equals the level shrinks to that cell.
        if (line.places.size() > 1)
            lines.push_back(std::move(line));
    }

    LonLat placeOf(const Squares::Vertex& vertex) const
    {
        const double longitude = m_frame.longitudeAt(vertex.column);
        const double turns = std::floor((longitude + Earth::wholeTurn / 2) / Earth::wholeTurn);
        return {longitude - turns * Earth::wholeTurn, m_frame.latitudeAt(vertex.row)};
    }

    GridFrame m_frame;
    double m_level;
    std::vector<Segment> m_segments;
    std::vector<std::uint32_t> m_beginning; // per vertex: the segment that begins there
    std::vector<bool> m_isEnd;              // per vertex: a segment ends there
};

// Returns the distance of two places as an angle in radians, by the haversine formula, which
// is precise for short distances.
double distance(const LonLat& a, const LonLat& b)
{
    const double north = std::sin((b.latitude - a.latitude) * Earth::degree / 2);
    const double east = std::sin((b.longitude - a.longitude) * Earth::degree / 2);
    const double squared =
        north * north + std::cos(a.latitude * Earth::degree) * std::cos(b.latitude * Earth::degree) * east * east;
    return 2 * std::asin(std::sqrt(std::min(squared, 1.0)));
}

} // namespace

std::vector<Isoline> isolinesOf(const Grid& grid, double level)
{
    return Tracer{grid, level}.trace();
}

double lengthOf(const Line& line)
{
    constexpr double radius = 6371.0088; // kilometres: (2 a + b) / 3 of WGS 84
    double angle = 0;
    for (std::size_t i = 1; i < line.size(); ++i)
        angle += distance(line[i - 1], line[i]);
    return radius * angle;
}

} // namespace Rain

namespace {

const Orla::VValueType<Rain::IsolineSet> isolineSetType{"isolines"};

// Sets the colour of connections that carry isolines.
const bool isolinesHaveColor = [] {
    Orla::VConnectionTypeColors::set(typeid(Rain::IsolineSet), "#17A2B8");
    return true;
}();

} // namespace
