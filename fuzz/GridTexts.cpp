#include "Support.hpp"

#include <rain/GridJson.hpp>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

// Reads files of grids, and texts of grids.

namespace {

void checkText(const Rain::Grid& grid)
{
    using Trait = Orla::VValueTrait<Rain::Grid>;
    Rain::Grid copy;
    Fuzz::require(Trait::setValueFromText(copy, Trait::Text(grid)), "the text of a grid can be read");
    Fuzz::require(copy == grid, "the text of a grid restores it");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text{Fuzz::textOf(data, size)};
    Rain::Grid grid;
    if (Orla::VValueTrait<Rain::Grid>::setValueFromText(grid, text))
        checkText(grid);
    const std::string path = Fuzz::fileWith("grid.json", text);
    try {
        const std::optional<Rain::Grid> read = Rain::readGridJson(path);
        Fuzz::require(read.has_value(), "a file that is read to its end gives a grid");
        checkText(*read);
    } catch (const std::runtime_error& error) {
        Fuzz::require(std::string_view(error.what()).starts_with(path), "a fault names the file");
    }
    return 0;
}
