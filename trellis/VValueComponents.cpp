#include <trellis/VValueComponents.hpp>

#include <loam/TypeInfo.hpp>

#include <algorithm>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <utility>

namespace Orla {

namespace {

struct ComponentTable {
    std::mutex mutex;
    // Two libraries may register the components of the same type. The first entry is used; the
    // next one replaces it when the first library is unloaded.
    std::unordered_map<std::string, std::vector<const std::vector<VValueComponents::Component>*>> types;
};

ComponentTable& componentTable()
{
    // Never destroyed, because values that outlive all static objects look components up.
    static ComponentTable& theTable = *new ComponentTable;
    return theTable;
}

// Returns the type and maker of the component, null for an unknown name. Returns a copy,
// because a maker may use the table itself.
VValueComponents::Component find(const std::type_info& type, const std::string& member)
{
    const std::lock_guard lock{componentTable().mutex};
    const auto entry = componentTable().types.find(Loam::typeKey(type));
    if (entry == componentTable().types.end())
        return {};
    const auto& components = *entry->second.front();
    const auto found = std::ranges::find(components, member, &VValueComponents::Component::name);
    if (found == components.end())
        return {};
    return {{}, found->type, found->make};
}

// Returns the parts of "outer.inner", or nothing for any other number of parts.
std::optional<std::pair<std::string, std::string>> split(const std::string& member)
{
    const auto dot = member.find('.');
    if (dot == std::string::npos || dot == 0 || dot + 1 == member.size())
        return std::nullopt;
    return std::pair{member.substr(0, dot), member.substr(dot + 1)};
}

} // namespace

VValueComponents::VValueComponents(const std::type_info& type, std::vector<Component> components)
    : m_key{Loam::typeKey(type)}, m_components{std::move(components)}
{
    const std::lock_guard lock{componentTable().mutex};
    componentTable().types[m_key].push_back(&m_components);
}

VValueComponents::~VValueComponents()
{
    const std::lock_guard lock{componentTable().mutex};
    auto& libraries = componentTable().types[m_key];
    std::erase(libraries, &m_components);
    if (libraries.empty())
        componentTable().types.erase(m_key);
}

StrongPtr<VValueBase> VValueComponents::make(VValueBase& container, const std::string& member)
{
    if (const Component component = find(container.getType(), member); component.make)
        return component.make(container);
    const auto parts = split(member);
    const StrongPtr<VValueBase> outer = parts ? make(container, parts->first) : nullptr;
    return outer ? make(*outer, parts->second) : nullptr;
}

VValueComponents::Accessor VValueComponents::accessor(const std::type_info& type, const std::string& member)
{
    if (member.empty())
        return {};
    if (const Component component = find(type, member); component.make)
        return {component.make};
    const auto parts = split(member);
    const Component outer = parts ? find(type, parts->first) : Component{};
    if (!outer.make)
        return {};
    Accessor all = accessor(*outer.type, parts->second);
    if (!all.empty())
        all.insert(all.begin(), outer.make);
    return all;
}

const std::type_info* VValueComponents::typeOf(const std::type_info& type, const std::string& member)
{
    if (member.empty())
        return &type;
    if (const Component component = find(type, member); component.make)
        return component.type;
    const auto parts = split(member);
    const std::type_info* outer = parts ? typeOf(type, parts->first) : nullptr;
    return outer ? typeOf(*outer, parts->second) : nullptr;
}

std::string VValueComponents::join(const std::string& outer, const std::string& inner)
{
    return outer.empty() || inner.empty() ? outer + inner : outer + '.' + inner;
}

std::string VValueComponents::rest(const std::string& joined, const std::string& outer)
{
    if (outer.empty())
        return joined;
    return joined.size() > outer.size() ? joined.substr(outer.size() + 1) : std::string();
}

bool VValueComponents::overlap(std::string_view a, std::string_view b) noexcept
{
    if (a.size() > b.size())
        std::swap(a, b);
    return b.starts_with(a) && (a.empty() || a.size() == b.size() || b[a.size()] == '.');
}

std::vector<std::string> VValueComponents::names(const std::type_info& type)
{
    std::vector<std::string> names;
    const std::lock_guard lock{componentTable().mutex};
    if (const auto entry = componentTable().types.find(Loam::typeKey(type)); entry != componentTable().types.end()) {
        for (const Component& component : *entry->second.front())
            names.push_back(component.name);
    }
    return names;
}

} // namespace Orla
