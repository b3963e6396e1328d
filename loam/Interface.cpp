#include <loam/Interface.hpp>

#include <algorithm>

namespace Loam {

InterfaceBase::~InterfaceBase() = default;

bool InterfaceContainer::add(const StrongPtr<InterfaceBase>& interface)
{
    if (!interface || std::ranges::find(m_interfaces, interface) != m_interfaces.end())
        return false;
    m_interfaces.push_back(interface);
    return true;
}

bool InterfaceContainer::remove(const StrongPtr<InterfaceBase>& interface)
{
    const auto found = std::ranges::find(m_interfaces, interface);
    if (found == m_interfaces.end())
        return false;
    m_interfaces.erase(found);
    return true;
}

} // namespace Loam
