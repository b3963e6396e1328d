#include <earth/ChartPlaces.hpp>
#include <earth/Land.hpp>
#include <earth/TopoJson.hpp>

#include <fathom/String.hpp>
#include <fathom/VConnectionTypeColors.hpp>

#include <trellis/VObjectCreator.hpp>

#include <stdexcept>
#include <typeinfo>
#include <vector>

namespace Earth {

using Orla::describe;
using Orla::StrongPtr;

/// Reads the land of a TopoJSON file. `land` has its polygons; `places` has its coast
/// lines in the chart of the network, cut at the date line, with a place of NaN after each
/// line.
///
/// The file is read again only when its name changes. `object` names the object to read; if it
/// is empty, all objects are read.
class CoastLines : public Orla::VObject, public ChartPlaces {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        publishCharts(pool);
        const Chart chart = chartIn(pool);
        if (request.hasChanged(m_file) || request.hasChanged(m_object)) {
            try {
                m_land(pool) <<= read(request);
            } catch (const ReadingStopped&) {
                return false;
            }
        }
        give(pool, chart, coastOf(m_land.value(pool)));
        return true;
    }

private:
    Land read(const Orla::VRequest& request) const
    {
        const std::string file = m_file.value(request.valuePool());
        if (file.empty())
            throw std::runtime_error{"the input \"file\" is empty, expected the name of a TopoJSON file"};
        return Land{readTopoJson(inputFile(file), m_object.value(request.valuePool()), [&](double fraction) {
                        request.reportProgress(fraction);
                        return !request.isCancelled();
                    }).polygons};
    }

    static std::vector<ChartPlaces::point> coastOf(const Land& land)
    {
        std::vector<Line> coasts;
        for (const Polygon& polygon : land.polygons()) {
            for (const Ring& ring : polygon) {
                coasts.push_back(ring);
                if (!ring.empty())
                    coasts.back().push_back(ring.front());
            }
        }
        return placesOf(coasts);
    }

    Orla::TypedSlot<std::string> m_file{this, "file", "",
                                        describe("The TopoJSON file with the land.").asInputFile("json", "topojson")};
    Orla::TypedSlot<std::string> m_object{this, "object", "",
                                          describe("The object of the file to read; empty for all."), 1};
    Orla::VOutput<Land> m_land{this, "land", Land{}, describe("The polygons of the land.")};
};

} // namespace Earth

namespace {

const Orla::VValueType<Earth::Land> landType{"land"};
const bool hasColor = [] {
    Orla::VConnectionTypeColors::set(typeid(Earth::Land), "#8D6E63");
    return true;
}();
const Orla::VObjectType<Earth::CoastLines> coastLinesType{
    "CoastLines",
    Orla::describeType("Reads the land of a TopoJSON file.").category("Maps").keywords("coast", "border", "TopoJSON")};

} // namespace
