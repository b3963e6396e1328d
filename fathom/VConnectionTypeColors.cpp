#include <fathom/VConnectionTypeColors.hpp>

#include <loam/TypeInfo.hpp>

#include <map>

namespace Orla {

namespace {

// Keyed by text, because a `type_info` does not outlive the library that defines it.
std::map<std::string, std::string>& table()
{
    static std::map<std::string, std::string> colours;
    colours[Loam::typeKey(typeid(int))] = "green";
    colours[Loam::typeKey(typeid(double))] = "green";
    return colours;
}

} // namespace

void VConnectionTypeColors::set(const std::type_info& type, const std::string& colour)
{
    table()[Loam::typeKey(type)] = colour;
}

std::string VConnectionTypeColors::get(const std::type_info& type)
{
    const auto& colours = table();
    const auto found = colours.find(Loam::typeKey(type));
    return found == colours.end() ? std::string() : found->second;
}

} // namespace Orla

namespace Tarn {

// Constant-initialised, for use while other libraries start up.
constinit const char* const renderobject_visibility = "visibility";
constinit const char* const rendertime_contribution = "rendertimecontribution";

} // namespace Tarn
