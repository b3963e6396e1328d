#include "GridJson.hpp"

#include <loam/Numbers.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <istream>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace Rain {

namespace {

using Earth::JsonFault;
using Earth::refuseJson;
using Json = nlohmann::json;
using Loam::numberText;

constexpr const char* members[] = {"width", "height", "scale", "translate", "values"};

// Listens to the parser. Extracts each value as soon as it was read, and skips unknown
// members: the document is never in memory as a whole.
class ValueTaker {
public:
    // The callback of the parser. Returns true if the parser must keep the value.
    bool operator()(int depth, Json::parse_event_t event, const Json& parsed)
    {
        using Event = Json::parse_event_t;
        if (depth == 1 && event == Event::key) {
            m_isKeyValues = parsed == "values";
            return std::find(std::begin(members), std::end(members), parsed) != std::end(members);
        }
        if (!m_isKeyValues)
            return true;
        if (depth == 1 && event == Event::array_start)
            values.clear(); // of several members of one name, the last counts
        if (depth != 2)
            return true;
        if (event == Event::array_start || event == Event::object_start)
            throw JsonFault{place(), event == Event::array_start ? "an array" : "an object", expected};
        if (event == Event::value)
            take(parsed);
        return false;
    }

    std::vector<double> values;

private:
    static constexpr const char* expected = "a number or null";

    std::string place() const { return "values[" + std::to_string(values.size()) + "]"; }

    void take(const Json& value)
    {
        if (values.size() == GridFrame::mostCells)
            throw JsonFault{"values", "more than " + std::to_string(values.size()) + " values", "fewer"};
        if (!value.is_null() && !value.is_number())
            refuseJson(place(), &value, expected);
        values.push_back(value.is_null() ? missing : value.get<double>());
    }

    bool m_isKeyValues = false;
};

const Json* find(const Json& document, const char* key)
{
    const auto found = document.find(key);
    return found == document.end() ? nullptr : &*found;
}

std::size_t count(const Json& document, const char* key)
{
    const Json* const found = find(document, key);
    const double number = found && found->is_number() ? found->get<double>() : 0;
    if (!(number >= 1 && number <= static_cast<double>(GridFrame::mostCells)) || number != std::floor(number))
        refuseJson(key, found, "a whole number from 1 to " + std::to_string(GridFrame::mostCells));
    return static_cast<std::size_t>(number);
}

std::pair<double, double> pair(const Json& document, const char* key, const char* expected)
{
    const Json* const found = find(document, key);
    if (!found || !found->is_array() || found->size() != 2)
        refuseJson(key, found, expected);
    for (std::size_t i = 0; i < 2; ++i) {
        if (!(*found)[i].is_number())
            refuseJson(key + ('[' + std::to_string(i) + ']'), &(*found)[i], "a number");
    }
    return {(*found)[0].get<double>(), (*found)[1].get<double>()};
}

void check(const GridFrame& frame)
{
    if (frame.rows > GridFrame::mostCells / frame.columns)
        throw JsonFault{"height", std::to_string(frame.columns) + " x " + std::to_string(frame.rows) + " cells",
                        "at most " + std::to_string(GridFrame::mostCells) + " cells"};
    if (!(frame.eastStep > 0 && frame.northStep != 0))
        throw JsonFault{"scale", '[' + numberText(frame.eastStep) + ", " + numberText(frame.northStep) + ']',
                        "a first number above 0 and a second that is not 0"};
    if (!(std::abs(frame.longitude) <= 360 && std::abs(frame.latitude) <= 90))
        throw JsonFault{"translate", '[' + numberText(frame.longitude) + ", " + numberText(frame.latitude) + ']',
                        "a longitude from -360 to 360 and a latitude from -90 to 90 degrees"};
    const GridFrame narrow{1, frame.rows, frame.longitude, frame.latitude, 1, frame.northStep};
    if (!narrow.isValid())
        throw JsonFault{"height",
                        std::to_string(frame.rows) + " rows, the last at latitude "
                            + numberText(frame.latitudeAt(static_cast<double>(frame.rows - 1))),
                        "latitudes from -90 to 90 degrees"};
    if (!frame.isValid())
        throw JsonFault{"width",
                        std::to_string(frame.columns) + " columns of " + numberText(frame.eastStep) + " degrees",
                        "at most 360 degrees in all"};
}

GridFrame frameOf(const Json& document)
{
    GridFrame frame;
    frame.columns = count(document, "width");
    frame.rows = count(document, "height");
    std::tie(frame.eastStep, frame.northStep) = pair(document, "scale", "[degrees east, degrees north]");
    std::tie(frame.longitude, frame.latitude) = pair(document, "translate", "[longitude, latitude]");
    check(frame);
    return frame;
}

} // namespace

std::optional<Grid> readGridJson(const std::string& file, const Earth::ReadingProgress& progress)
{
    constexpr std::uint64_t largest = std::uint64_t{1} << 28;
    Earth::JsonFile content{file, "a JSON file with a grid", largest, progress};
    std::istream stream{&content};
    ValueTaker taker;
    try {
        const Json document = Json::parse(stream, std::ref(taker));
        if (!document.is_object())
            refuseJson("", &document, "an object with \"width\", \"height\", \"scale\", \"translate\" and \"values\"");
        const GridFrame frame = frameOf(document);
        const std::string expected = "an array of " + std::to_string(frame.cells()) + ", one value per cell";
        const Json* const values = find(document, "values");
        if (!values || !values->is_array())
            refuseJson("values", values, expected);
        if (taker.values.size() != frame.cells())
            throw JsonFault{"values", "an array of " + std::to_string(taker.values.size()), expected};
        return Grid{frame, taker.values};
    } catch (const Earth::ReadingStopped&) {
        return std::nullopt;
    } catch (...) {
        Earth::rethrowJsonFault(file);
    }
}

} // namespace Rain
