#include "Conversions.hpp"
#include "Support.hpp"

// Converts a network and reads the result again.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::prepareHost();
    Fuzz::checkConversion(Fuzz::fileWith("network.toml", Fuzz::textOf(data, size)), {});
    return 0;
}
