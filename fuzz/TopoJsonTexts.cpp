#include "Support.hpp"

#include <earth/TopoJson.hpp>

#include <stdexcept>

// Reads shapes of the earth.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        Earth::shapesOfTopoJson(Fuzz::textOf(data, size), "shapes.json");
    } catch (const std::runtime_error& error) {
        Fuzz::require(std::string_view(error.what()).starts_with("shapes.json"), "a fault names the file");
    }
    return 0;
}
