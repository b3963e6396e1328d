#include "Support.hpp"

#include <quakes/GeoJson.hpp>

#include <stdexcept>

// Reads files of earthquakes.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string path = Fuzz::fileWith("quakes.json", Fuzz::textOf(data, size));
    try {
        Fuzz::require(Quakes::readGeoJson(path).has_value(), "a file that is read to its end gives a catalogue");
    } catch (const std::runtime_error& error) {
        Fuzz::require(std::string_view(error.what()).starts_with(path), "a fault names the file");
    }
    return 0;
}
