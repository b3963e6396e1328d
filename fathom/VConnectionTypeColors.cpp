#include <fathom/VConnectionTypeColors.hpp>

#include <loam/TypeInfo.hpp>

#include <map>

namespace Orla {

namespace {

// Keyed by text, because a `type_info` does not outlive the library that defines it.
struct ColourTable {
    ~ColourTable() { isDestroyed = true; }

    std::map<std::string, std::string> colours;

    static constinit bool isDestroyed;
};

constinit bool ColourTable::isDestroyed = false;

// Returns null after the table was destroyed at exit.
std::map<std::string, std::string>* colourTable()
{
    if (ColourTable::isDestroyed)
        return nullptr;
    static ColourTable theTable;
    theTable.colours[Loam::typeKey(typeid(int))] = "green";
    theTable.colours[Loam::typeKey(typeid(double))] = "green";
    return &theTable.colours;
}

} // namespace

void VConnectionTypeColors::set(const std::type_info& type, const std::string& colour)
{
    if (auto* const colours = colourTable())
        (*colours)[Loam::typeKey(type)] = colour;
}

std::string VConnectionTypeColors::get(const std::type_info& type)
{
    const auto* const colours = colourTable();
    if (!colours)
        return {};
    const auto found = colours->find(Loam::typeKey(type));
    return found == colours->end() ? std::string() : found->second;
}

} // namespace Orla

namespace Tarn {

// Constant-initialised, for use while other libraries start up.
constinit const char* const renderobject_visibility = "visibility";
constinit const char* const rendertime_contribution = "rendertimecontribution";

} // namespace Tarn
