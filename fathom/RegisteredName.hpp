#pragma once

#include <loam/Typename.hpp>

#include <string>
#include <typeinfo>

namespace Orla {

/// Registers the name under which programs find a type, while the library that defines this
/// object is loaded.
class RegisteredName {
public:
    RegisteredName(const std::type_info& type, const std::string& name) : m_type{type}
    {
        Loam::setTypename(type, name);
    }
    RegisteredName(const RegisteredName&) = delete;
    RegisteredName& operator=(const RegisteredName&) = delete;
    ~RegisteredName() { Loam::unsetTypename(m_type); }

private:
    const std::type_info& m_type;
};

} // namespace Orla
