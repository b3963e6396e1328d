#include <loam/TypeInfo.hpp>

#include <loam/Numbers.hpp>

#include <cstdint>

namespace Loam {

namespace {

// A second std::type_info of a given name, as another library would have it.
class SameName : public std::type_info {
public:
    explicit SameName(const char* name) : std::type_info(name) {}
};

bool isLocalToItsSourceFile(const std::type_info& type, const std::string& nameCopy)
{
    // GCC marks these types, so the comparison detects them. Clang does not, so look
    // for the name of an unnamed namespace. (Under Clang, a type inside a static
    // function cannot be distinguished from its namesakes.)
    return nameCopy.find("_GLOBAL__N_") != std::string::npos || type != SameName(nameCopy.c_str());
}

} // namespace

std::string typeKey(const std::type_info& type)
{
    std::string key = type.name();
    if (isLocalToItsSourceFile(type, key)) {
        // The address of the name, which std::type_info compares; several objects may
        // share one name.
        key += '@';
        key += numberText(static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(type.name())));
    }
    return key;
}

} // namespace Loam
