#pragma once

#include <trellis/Export.hpp>
#include <trellis/VValueBase.hpp>

#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace Orla {

/// Which named components the values of a type have, so that a connection can
/// pick the lower bound of a range or the time of a time value.
class TRELLIS_API VValueComponents {
public:
    struct Component {
        std::string name;
        const std::type_info* type = nullptr;

        /// Makes a value that reads from and writes to \p container.
        StrongPtr<VValueBase> (*make)(VValueBase& container) = nullptr;
    };

    /// Leads from a value to one of its components: each function creates a component of
    /// the value that the one before created.
    using Accessor = std::vector<StrongPtr<VValueBase> (*)(VValueBase& container)>;

    /// Offers \p components for values of type \p type as long as it lives.
    explicit VValueComponents(const std::type_info& type, std::vector<Component> components);
    ~VValueComponents();
    VValueComponents(const VValueComponents&) = delete;
    VValueComponents& operator=(const VValueComponents&) = delete;

    /// The component \p member of \p container, null if its type has none of that
    /// name. "range.begin" is the component "begin" of the component "range".
    static StrongPtr<VValueBase> make(VValueBase& container, const std::string& member);

    /// What leads to the component \p member of values of type \p type; empty for the
    /// value itself and for a name that the type does not have. Looks names up once, so
    /// that reading through it needs neither a lock nor a string.
    static Accessor accessor(const std::type_info& type, const std::string& member);

    /// Type of the component, null if \p type has none of that name. The empty
    /// name is the value itself.
    static const std::type_info* typeOf(const std::type_info& type, const std::string& member);

    /// The name of the component \p inner of the component \p outer; either may be
    /// empty.
    static std::string join(const std::string& outer, const std::string& inner);

    /// What was joined to \p outer to make \p joined.
    /// \pre \p joined was made so.
    static std::string rest(const std::string& joined, const std::string& outer);

    /// True if a change of one of the two components may change the other: they
    /// are the same, or one lies in the other.
    static bool overlap(std::string_view a, std::string_view b) noexcept;

    /// Names of the components of \p type in the order in which they were declared.
    static std::vector<std::string> names(const std::type_info& type);

private:
    std::string m_key;
    std::vector<Component> m_components;
};

} // namespace Orla
