#pragma once

#include <loam/Typename.hpp>

#include <string>
#include <typeinfo>

namespace Orla {

/// Gives a type its name for people as long as the library that says so is loaded.
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
