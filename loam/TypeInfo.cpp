#include <loam/TypeInfo.hpp>

#include <loam/Numbers.hpp>

#include <cstdint>

namespace Loam {

namespace {

// Another std::type_info of a given name, as one from another library would be.
class SameName : public std::type_info {
public:
    explicit SameName(const char* name) : std::type_info(name) {}
};

bool isLocalToItsSourceFile(const std::type_info& type, const std::string& nameCopy)
{
    // GCC marks such types, and the comparison tells. Clang does not, so the name
    // has to: that of an unnamed namespace. (A type inside a static function
    // cannot be told from its namesakes under Clang.)
    return nameCopy.find("_GLOBAL__N_") != std::string::npos || type != SameName(nameCopy.c_str());
}

} // namespace

std::string typeKey(const std::type_info& type)
{
    std::string key = type.name();
    if (isLocalToItsSourceFile(type, key)) {
        // The address of the name, which is what std::type_info compares: of the
        // object itself there may be several.
        key += '@';
        key += numberText(static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(type.name())));
    }
    return key;
}

} // namespace Loam
