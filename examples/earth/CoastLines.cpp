#include <earth/ChartPlaces.hpp>
#include <earth/DataFile.hpp>
#include <earth/DateLine.hpp>
#include <earth/Land.hpp>
#include <earth/TopoJson.hpp>

#include <fathom/String.hpp>
#include <fathom/VConnectionTypeColors.hpp>

#include <trellis/VObjectCreator.hpp>

#include <limits>
#include <stdexcept>
#include <typeinfo>

namespace Earth {

using Orla::StrongPtr;

/// Reads the land of a TopoJSON file. `land` has its polygons; `places` has its coast
/// lines in the chart of the network, cut at the date line, with a place of NaN after each
/// line.
///
/// If the file does not exist, it is searched for in the data folders of the program. It
/// is read again only when its name changes. `object` names the object to read; if it is
/// empty, all objects are read.
class CoastLines : public Orla::VObject, public ChartPlaces {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        publishCharts(pool);
        const std::string file = m_file.value(pool);
        const std::string object = m_object.value(pool);
        const Chart chart = chartIn(pool);
        if (file.empty())
            throw std::runtime_error{"the input \"file\" is empty, expected the name of a TopoJSON file"};
        try {
            if (file != m_lastFile || object != m_lastObject)
                read(file, object, request);
        } catch (const ReadingStopped&) {
            return false;
        }
        m_land(pool) <<= m_lastLand;
        give(pool, chart, m_coast);
        return true;
    }

private:
    void read(const std::string& file, const std::string& object, const Orla::VRequest& request)
    {
        const Shapes shapes = readTopoJson(findData(file), object, [&request](double fraction) {
            request.reportProgress(fraction);
            return !request.isCancelled();
        });
        constexpr double none = std::numeric_limits<double>::quiet_NaN();
        m_coast.clear();
        for (const Polygon& polygon : shapes.polygons) {
            for (const Ring& ring : polygon) {
                Line closed = ring;
                if (!closed.empty())
                    closed.push_back(closed.front());
                for (const Line& line : cutLineAtDateLine(closed)) {
                    for (const LonLat& place : line)
                        m_coast.emplace_back(place.longitude, place.latitude, 0);
                    m_coast.emplace_back(none, none, none);
                }
            }
        }
        m_lastLand = Land{shapes.polygons};
        m_lastFile = file;
        m_lastObject = object;
    }

    Orla::TypedSlot<std::string> m_file{this, "file", "", 0};
    Orla::TypedSlot<std::string> m_object{this, "object", "", 1};
    Orla::VOutput<Land> m_land{this, "land", Land{}};

    std::string m_lastFile;
    std::string m_lastObject;
    Land m_lastLand;
    std::vector<ChartPlaces::point> m_coast;
};

} // namespace Earth

namespace {

const Orla::VValueType<Earth::Land> landType{"land"};
const bool hasColor = [] {
    Orla::VConnectionTypeColors::set(typeid(Earth::Land), "#8D6E63");
    return true;
}();
const Orla::VObjectType<Earth::CoastLines> coastLinesType{"CoastLines"};

} // namespace
