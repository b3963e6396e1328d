#include <trellis/detail/RegistryReport.hpp>

#include <trellis/VActionNotifier.hpp>

#include <loam/Environment.hpp>
#include <loam/Typename.hpp>

namespace Orla::Detail {

std::string ownerOf(const std::type_info& type, const std::type_info& creator)
{
    // Its Loam::Typename may be the disputed name itself.
    std::string owner = "type " + Loam::qualifiedTypename(type);
    if (const std::string library = Loam::getLibraryPath(&creator); !library.empty())
        owner += " of " + library;
    return owner;
}

std::string libraryOf(const std::type_info& creator)
{
    const std::string path = Loam::getLibraryPath(&creator);
    const std::string file = path.substr(path.rfind('/') + 1); // npos + 1 is 0
    return file.substr(0, file.find(".so"));
}

bool acceptedOrReported(const char* kind, const std::string& name, const std::string& owner, const std::string& holder)
{
    if (holder.empty())
        return true;
    VActionNotifier::Warning(std::string("The ") + kind + " name \"" + name + "\" is taken by " + holder
                             + "; refused for " + owner);
    return false;
}

} // namespace Orla::Detail
