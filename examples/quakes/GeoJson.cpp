#include "GeoJson.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <istream>
#include <string_view>
#include <utility>
#include <vector>

namespace Quakes {

namespace {

using Earth::JsonFault;
using Earth::refuseJson;
using Earth::shortened;
using Json = nlohmann::json;

// Looks up the members of one object. A null member counts as missing. Messages put the
// prefix before the key of a member.
class Members {
public:
    Members(const Json& object, const char* prefix) : m_object{object}, m_prefix{prefix} {}

    const Json* find(const char* key) const
    {
        const auto found = m_object.find(key);
        return found == m_object.end() || found->is_null() ? nullptr : &*found;
    }

    Members object(const char* key, const char* prefix) const
    {
        const Json* const found = find(key);
        if (!found || !found->is_object())
            refuseMember(key, "an object");
        return {*found, prefix};
    }

    const Json& array(const char* key, const char* expected) const
    {
        const Json* const found = find(key);
        if (!found || !found->is_array())
            refuseMember(key, expected);
        return *found;
    }

    double number(const char* key, const char* expected) const
    {
        const Json* const found = find(key);
        if (!found || !found->is_number())
            refuseMember(key, expected);
        return found->get<double>();
    }

    std::optional<double> optionalNumber(const char* key) const
    {
        if (!find(key))
            return std::nullopt;
        return number(key, "a number or null");
    }

    const std::string& text(const char* key, const char* expected) const
    {
        const Json* const found = find(key);
        if (!found || !found->is_string())
            refuseMember(key, expected);
        return found->get_ref<const std::string&>();
    }

    std::string optionalText(const char* key) const { return find(key) ? text(key, "a text or null") : std::string(); }

    void expectText(const char* key, std::string_view value, const char* expected) const
    {
        if (text(key, expected) != value)
            refuseMember(key, expected);
    }

    [[noreturn]] void refuseMember(const char* key, const char* expected) const
    {
        // The message distinguishes null from missing.
        const auto found = m_object.find(key);
        refuseJson(m_prefix + std::string(key), found == m_object.end() ? nullptr : &*found, expected);
    }

private:
    const Json& m_object;
    const char* m_prefix;
};

void readCoordinates(Quake& quake, const Members& geometry)
{
    constexpr const char* expected = "[longitude, latitude, depth]";
    const Json& coordinates = geometry.array("coordinates", expected);
    if (coordinates.size() < 2)
        geometry.refuseMember("coordinates", expected);
    const auto number = [&coordinates](std::size_t index) {
        if (!coordinates[index].is_number())
            refuseJson("geometry.coordinates[" + std::to_string(index) + "]", &coordinates[index], "a number");
        return coordinates[index].get<double>();
    };
    quake.longitude = number(0);
    quake.latitude = number(1);
    if (coordinates.size() > 2 && !coordinates[2].is_null())
        quake.depth = number(2);
}

Quake quakeOf(const Json& event)
{
    if (!event.is_object())
        refuseJson("", &event, "an object of type \"Feature\"");
    const Members feature{event, ""};
    Quake quake;
    quake.id = feature.text("id", "a text");
    feature.expectText("type", "Feature", "\"Feature\"");

    const Members properties = feature.object("properties", "properties.");
    constexpr const char* timeExpected = "milliseconds since 1970 UTC, at most 8.64e15 before or after";
    const double milliseconds = properties.number("time", timeExpected);
    // Beyond this, seconds as a double do not resolve milliseconds.
    if (std::abs(milliseconds) > 8.64e15)
        properties.refuseMember("time", timeExpected);
    quake.time = milliseconds / 1000;
    quake.magnitude = properties.optionalNumber("mag");
    quake.magnitudeType = properties.optionalText("magType");
    quake.net = properties.optionalText("net");
    quake.place = properties.optionalText("place");
    quake.type = properties.optionalText("type");
    quake.url = properties.optionalText("url");

    const Members geometry = feature.object("geometry", "geometry.");
    geometry.expectText("type", "Point", "\"Point\"");
    readCoordinates(quake, geometry);
    return quake;
}

// Listens to the parser and extracts each event as soon as it was read. The document is
// never in memory as a whole.
class EventTaker {
public:
    // The callback of the parser. Returns true if the parser must keep the value.
    bool operator()(int depth, Json::parse_event_t event, const Json& parsed)
    {
        using Event = Json::parse_event_t;
        if (depth == 1) {
            if (event == Event::key)
                m_isKeyFeatures = parsed == "features";
            else if (event == Event::array_start)
                m_isInside = m_isKeyFeatures;
            else if (event == Event::array_end)
                m_isInside = false;
        } else if (depth == 2 && m_isInside
                   && (event == Event::object_end || event == Event::array_end || event == Event::value)) {
            take(parsed);
            return false;
        }
        return true;
    }

    std::vector<Quake> events;

private:
    void take(const Json& event)
    {
        try {
            events.push_back(quakeOf(event));
        } catch (JsonFault& fault) {
            std::string place = "features[" + std::to_string(events.size()) + "]";
            // Does not copy the event: a copy would recurse as deeply as the event is nested.
            if (const auto id = event.find("id"); id != event.end() && id->is_string())
                place += " (id " + shortened(id->dump(-1, ' ', true)) + ")";
            fault.place = place + (fault.place.empty() ? "" : ", ") + fault.place;
            throw;
        }
    }

    bool m_isKeyFeatures = false;
    bool m_isInside = false;
};

} // namespace

std::optional<Catalogue> readGeoJson(const std::string& file, const Earth::ReadingProgress& progress)
{
    constexpr std::uint64_t largest = std::uint64_t{1} << 30;
    Earth::JsonFile content{file, "a GeoJSON file", largest, progress};
    std::istream stream{&content};
    EventTaker taker;
    try {
        const Json document = Json::parse(stream, std::ref(taker));
        if (!document.is_object())
            refuseJson("", &document, "an object of type \"FeatureCollection\"");
        const Members collection{document, ""};
        collection.expectText("type", "FeatureCollection", "\"FeatureCollection\"");
        collection.array("features", "an array of events");
    } catch (const Earth::ReadingStopped&) {
        return std::nullopt;
    } catch (...) {
        Earth::rethrowJsonFault(file);
    }
    return Catalogue{std::move(taker.events)};
}

} // namespace Quakes
