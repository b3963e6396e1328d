#include "Grid.hpp"
#include "GridJson.hpp"

#include <fathom/Chunk.hpp>
#include <fathom/String.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <stdexcept>

namespace Rain {

using Orla::describe;

/// Reads the grid of a JSON file. `values` has its values as numbers, for objects that know no
/// grids; missing values are NaN.
///
/// If the file cannot be read, the update fails and the previous grid is kept.
class GridReader : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const Orla::StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const std::string file = m_file.value(pool);
        if (file.empty())
            throw std::runtime_error{"the input \"file\" is empty, expected the name of a JSON file with a grid"};

        const std::optional<Grid> grid = readGridJson(inputFile(file), [&request](double fraction) {
            request.reportProgress(fraction);
            return !request.isCancelled();
        });
        if (!grid)
            return false;
        m_grid(pool) <<= *grid;
        m_values(pool) <<= grid->values();
        return true;
    }

private:
    Orla::TypedSlot<std::string> m_file{this, "file", "", describe("The JSON file with the grid.").asInputFile("json")};
    Orla::VOutput<Grid> m_grid{this, "grid", Grid{}, describe("The grid.")};
    Orla::VOutput<Grid::Values> m_values{this, "values", Grid::Values{},
                                         describe("The values of the grid, row by row; NaN where they are missing.")};
};

} // namespace Rain

namespace {

const Orla::VObjectType<Rain::GridReader> gridReaderType{
    "GridReader",
    Orla::describeType("Reads a grid from a JSON file.").category("Grids").keywords("raster", "precipitation")};

} // namespace
