#include "Catalogue.hpp"
#include "GeoJson.hpp"

#include <fathom/String.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <stdexcept>

namespace Quakes {

using Orla::describe;

/// Reads the events of a GeoJSON file. If the file cannot be read, the update fails and the
/// previous events are kept.
class QuakeReader : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const Orla::StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const std::string file = m_file.value(pool);
        if (file.empty())
            throw std::runtime_error{"the input \"file\" is empty, expected the name of a GeoJSON file"};

        const std::optional<Catalogue> catalogue = readGeoJson(inputFile(file), [&request](double fraction) {
            request.reportProgress(fraction);
            return !request.isCancelled();
        });
        if (!catalogue)
            return false;
        m_catalogue(pool) <<= *catalogue;
        return true;
    }

private:
    Orla::TypedSlot<std::string> m_file{this, "file", "",
                                        describe("The GeoJSON file with the events.").asInputFile("geojson", "json")};
    Orla::VOutput<Catalogue> m_catalogue{this, "catalog", Catalogue{}, describe("The events of the file.")};
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::QuakeReader> quakeReaderType{
    "QuakeReader", Orla::describeType("Reads earthquakes from a GeoJSON file.")
                       .category("Earthquakes")
                       .keywords("event", "catalogue", "GeoJSON")
                       .page("https://www.rfc-editor.org/rfc/rfc7946")};

} // namespace
