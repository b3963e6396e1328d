#include <earth/TopoJson.hpp>

#include <earth/JsonText.hpp>

#include <loam/Numbers.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <utility>

namespace Earth {

namespace {

using Json = nlohmann::json;

// The path to a value in the document. The steps of a path are on the stack; only
// messages create its text.
class Path {
public:
    Path() = default;
    Path(const Path& parent, std::string_view key) : m_parent{&parent}, m_key{key} {}
    Path(const Path& parent, std::size_t index) : m_parent{&parent}, m_index{index} {}

    // Returns a text like "objects.land.arcs[0][3]"; empty for the document itself.
    std::string text() const
    {
        if (!m_parent)
            return "";
        const std::string before = m_parent->text();
        if (m_index)
            return before + '[' + std::to_string(*m_index) + ']';
        return before + (before.empty() ? "" : ".") + std::string(m_key);
    }

private:
    const Path* m_parent = nullptr;
    std::string_view m_key;
    std::optional<std::size_t> m_index;
};

std::string textOf(const LonLat& place)
{
    return '[' + Loam::numberText(place.longitude) + ", " + Loam::numberText(place.latitude) + ']';
}

[[noreturn]] void refuse(const Path& path, const Json* found, std::string expected)
{
    refuseJson(path.text(), found, std::move(expected));
}

const Json* find(const Json& object, const char* key)
{
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

const Json& array(const Json* found, const Path& path, const char* expected)
{
    if (!found || !found->is_array())
        refuse(path, found, expected);
    return *found;
}

// Returns the first two numbers of an array.
LonLat pair(const Json& found, const Path& path, const char* expected, std::size_t most)
{
    if (!found.is_array() || found.size() < 2 || found.size() > most)
        refuse(path, &found, expected);
    for (std::size_t i = 0; i < 2; ++i) {
        if (!found[i].is_number())
            refuse({path, i}, &found[i], "a number");
    }
    return {found[0].get<double>(), found[1].get<double>()};
}

constexpr std::size_t any = static_cast<std::size_t>(-1);

class Topology {
public:
    explicit Topology(const Json& document)
    {
        const Path root;
        if (!document.is_object())
            refuse(root, &document, "an object of type \"Topology\"");
        const Json* const type = find(document, "type");
        if (!type || *type != "Topology")
            refuse({root, "type"}, type, "\"Topology\"");
        if (const Json* const transform = find(document, "transform"))
            readTransform(*transform, {root, "transform"});
        const Path path{root, "arcs"};
        const Json& arcs = array(find(document, "arcs"), path, "an array of arcs");
        m_arcs.reserve(arcs.size());
        std::size_t positions = 0;
        for (std::size_t i = 0; i < arcs.size(); ++i) {
            m_arcs.push_back(arc(arcs[i], {path, i}));
            positions += m_arcs.back().size();
        }
        constexpr std::size_t uses = 16; // borders of countries are used twice per object
        m_left = std::max<std::size_t>(uses * positions, 1'000'000);
    }

    void read(const Json& geometry, const Path& path, Shapes& shapes, int depth = 0) const
    {
        if (!geometry.is_object())
            refuse(path, &geometry, "a geometry");
        const Json* const found = find(geometry, "type");
        if (!found)
            refuse({path, "type"}, nullptr, kinds);
        if (found->is_null())
            return;
        const std::string type = found->is_string() ? found->get<std::string>() : std::string();
        const Path arcs{path, "arcs"};
        const Path coordinates{path, "coordinates"};
        if (type == "GeometryCollection") {
            readCollection(geometry, path, shapes, depth);
        } else if (type == "Point") {
            shapes.points.push_back(position(find(geometry, "coordinates"), coordinates));
        } else if (type == "MultiPoint") {
            const Json& points = array(find(geometry, "coordinates"), coordinates, "an array of positions");
            for (std::size_t i = 0; i < points.size(); ++i)
                shapes.points.push_back(position(&points[i], {coordinates, i}));
        } else if (type == "LineString") {
            shapes.lines.push_back(line(find(geometry, "arcs"), arcs));
        } else if (type == "MultiLineString") {
            const Json& lines = array(find(geometry, "arcs"), arcs, "an array of lines");
            for (std::size_t i = 0; i < lines.size(); ++i)
                shapes.lines.push_back(line(&lines[i], {arcs, i}));
        } else if (type == "Polygon") {
            shapes.polygons.push_back(polygon(find(geometry, "arcs"), arcs));
        } else if (type == "MultiPolygon") {
            const Json& polygons = array(find(geometry, "arcs"), arcs, "an array of polygons");
            for (std::size_t i = 0; i < polygons.size(); ++i)
                shapes.polygons.push_back(polygon(&polygons[i], {arcs, i}));
        } else {
            refuse({path, "type"}, found, kinds);
        }
    }

private:
    static constexpr const char* kinds = "\"GeometryCollection\", \"Polygon\", \"MultiPolygon\", \"LineString\", "
                                         "\"MultiLineString\", \"Point\", \"MultiPoint\" or null";

    void readTransform(const Json& transform, const Path& path)
    {
        if (!transform.is_object())
            refuse(path, &transform, "an object with \"scale\" and \"translate\"");
        m_isTransformed = true;
        for (const auto& [key, target] : {std::pair{"scale", &m_scale}, std::pair{"translate", &m_translate}}) {
            const Path member{path, key};
            const Json* const found = find(transform, key);
            if (!found)
                refuse(member, nullptr, "two numbers");
            *target = pair(*found, member, "two numbers", 2);
        }
    }

    // Checks a place and removes rounding errors at the poles and the date line.
    static LonLat checked(LonLat place, const Path& path)
    {
        constexpr double rounding = 1e-9;
        // This form of the comparison also refuses NaN.
        if (!(std::abs(place.longitude) <= 360 + rounding && std::abs(place.latitude) <= 90 + rounding))
            throw JsonFault{path.text(), "the position " + textOf(place),
                            "a longitude from -360 to 360 and a latitude from -90 to 90 degrees"};
        place.latitude = std::clamp(place.latitude, -90.0, 90.0);
        if (std::abs(place.longitude) > 180 && std::abs(place.longitude) <= 180 + rounding)
            place.longitude = std::copysign(180, place.longitude);
        return place;
    }

    LonLat transformed(const LonLat& position) const
    {
        if (!m_isTransformed)
            return position;
        return {position.longitude * m_scale.longitude + m_translate.longitude,
                position.latitude * m_scale.latitude + m_translate.latitude};
    }

    LonLat position(const Json* found, const Path& path) const
    {
        if (!found)
            refuse(path, nullptr, "[longitude, latitude]");
        return checked(transformed(pair(*found, path, "[longitude, latitude]", any)), path);
    }

    Line arc(const Json& positions, const Path& path) const
    {
        if (!positions.is_array() || positions.size() < 2)
            refuse(path, &positions, "an array of at least 2 positions");
        Line result;
        result.reserve(positions.size());
        LonLat sum;
        for (std::size_t i = 0; i < positions.size(); ++i) {
            const Path place{path, i};
            LonLat read = pair(positions[i], place, "[longitude, latitude]", any);
            if (m_isTransformed) {
                sum = {sum.longitude + read.longitude, sum.latitude + read.latitude};
                read = transformed(sum);
            }
            result.push_back(checked(read, place));
        }
        return result;
    }

    void readCollection(const Json& geometry, const Path& path, Shapes& shapes, int depth) const
    {
        constexpr int deepest = 64;
        const Path members{path, "geometries"};
        if (depth == deepest)
            throw JsonFault{path.text(), "a collection within " + std::to_string(depth) + " others",
                            "at most " + std::to_string(deepest) + " levels"};
        const Json& geometries = array(find(geometry, "geometries"), members, "an array of geometries");
        for (std::size_t i = 0; i < geometries.size(); ++i)
            read(geometries[i], {members, i}, shapes, depth + 1);
    }

    // Joins arcs. The index ~i (that is, -1 - i) means arc i backwards.
    Line line(const Json* found, const Path& path) const
    {
        const Json& indices = array(found, path, "an array of arc indices");
        if (indices.empty())
            refuse(path, found, "at least one arc index");
        Line result;
        for (std::size_t i = 0; i < indices.size(); ++i) {
            const Path place{path, i};
            const bool isBackwards = indices[i].is_number_integer() && indices[i] < 0;
            Line arc = m_arcs[arcIndex(indices[i], place)];
            m_left -= std::min(m_left, arc.size());
            if (m_left == 0)
                throw JsonFault{place.text(), "more positions than memory should be spent on",
                                "shapes that use each arc a few times"};
            if (isBackwards)
                std::reverse(arc.begin(), arc.end());
            if (i > 0 && result.back() != arc.front())
                throw JsonFault{place.text(), "an arc that begins at " + textOf(arc.front()),
                                "one that begins where the previous arc ends, at " + textOf(result.back())};
            result.insert(result.end(), arc.begin() + (i > 0 ? 1 : 0), arc.end());
        }
        return result;
    }

    std::size_t arcIndex(const Json& found, const Path& path) const
    {
        const std::string count = std::to_string(m_arcs.size());
        const std::string expected =
            "a whole number from -" + count + " to less than " + count + ", the number of arcs";
        if (!found.is_number_integer())
            refuse(path, &found, expected);
        if (found.is_number_unsigned()) {
            const auto index = found.get<std::uint64_t>();
            if (index >= m_arcs.size())
                refuse(path, &found, expected);
            return static_cast<std::size_t>(index);
        }
        // For a negative number, ~number is not negative; it never overflows.
        const std::int64_t number = found.get<std::int64_t>();
        const auto index = static_cast<std::uint64_t>(number < 0 ? ~number : number);
        if (index >= m_arcs.size())
            refuse(path, &found, expected);
        return static_cast<std::size_t>(index);
    }

    Polygon polygon(const Json* found, const Path& path) const
    {
        const Json& rings = array(found, path, "an array of rings");
        Polygon result;
        result.reserve(rings.size());
        for (std::size_t i = 0; i < rings.size(); ++i) {
            const Path place{path, i};
            Ring ring = line(&rings[i], place);
            if (ring.front() != ring.back())
                throw JsonFault{place.text(),
                                "a ring that begins at " + textOf(ring.front()) + " and ends at " + textOf(ring.back()),
                                "one that ends where it begins"};
            if (ring.size() < 4)
                throw JsonFault{place.text(), "a ring of " + std::to_string(ring.size()) + " positions",
                                "at least 4, the last equal to the first"};
            ring.pop_back();
            result.push_back(std::move(ring));
        }
        return result;
    }

    bool m_isTransformed = false;
    LonLat m_scale{1, 1};
    LonLat m_translate;
    std::vector<Line> m_arcs;
    mutable std::size_t m_left = 0; // positions that shapes may still have
};

Shapes shapesOf(const Json& document, std::string_view object)
{
    const Topology topology{document};
    const Path root;
    const Path path{root, "objects"};
    const Json* const objects = find(document, "objects");
    if (!objects || !objects->is_object())
        refuse(path, objects, "an object of geometries");

    Shapes shapes;
    if (!object.empty()) {
        const auto found = objects->find(std::string(object));
        if (found == objects->end()) {
            std::string names;
            for (const auto& item : objects->items())
                names += (names.empty() ? "" : ", ") + item.key();
            throw JsonFault{path.text(), names.empty() ? "no objects" : "the objects " + shortened(names),
                            "one named " + std::string(object)};
        }
        topology.read(*found, {path, object}, shapes);
        return shapes;
    }
    for (const auto& item : objects->items())
        topology.read(item.value(), {path, item.key()}, shapes);
    return shapes;
}

} // namespace

Shapes shapesOfTopoJson(std::string_view text, const std::string& name, std::string_view object)
{
    try {
        return shapesOf(Json::parse(text), object);
    } catch (...) {
        rethrowJsonFault(name);
    }
}

Shapes readTopoJson(const std::string& file, std::string_view object, const ReadingProgress& progress)
{
    // The parsed document takes up to twenty times the size of the file.
    constexpr std::uint64_t largest = std::uint64_t{256} << 20;
    JsonFile content{file, "a TopoJSON file", largest, progress};
    std::istream stream{&content};
    try {
        return shapesOf(Json::parse(stream), object);
    } catch (...) {
        rethrowJsonFault(file);
    }
}

} // namespace Earth
