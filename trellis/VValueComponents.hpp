#pragma once

#include <trellis/Export.hpp>
#include <trellis/VValueBase.hpp>

#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace Orla {

/// The named components of the values of a type. A connection can select one, such as the
/// lower bound of a range or the time of a time value.
class TRELLIS_API VValueComponents {
public:
    struct Component {
        std::string name;
        const std::type_info* type = nullptr;

        /// Creates a value that reads from and writes to \p container.
        StrongPtr<VValueBase> (*make)(VValueBase& container) = nullptr;
    };

    /// The steps from a value to one of its components: each function creates a component of
    /// the value that the previous one created.
    using Accessor = std::vector<StrongPtr<VValueBase> (*)(VValueBase& container)>;

    /// Registers \p components for values of type \p type for the lifetime of this object.
    explicit VValueComponents(const std::type_info& type, std::vector<Component> components);
    ~VValueComponents();
    VValueComponents(const VValueComponents&) = delete;
    VValueComponents& operator=(const VValueComponents&) = delete;

    /// Creates the component \p member of \p container. Returns null if the type has no
    /// component of that name. "range.begin" is the component "begin" of the component
    /// "range".
    static StrongPtr<VValueBase> make(VValueBase& container, const std::string& member);

    /// Returns the accessor of the component \p member of values of type \p type; empty for
    /// the value itself and for an unknown name. Names are looked up only here, so reading
    /// through the accessor needs neither a lock nor a string.
    static Accessor accessor(const std::type_info& type, const std::string& member);

    /// Returns the type of the component, or null if \p type has no component of that name. An
    /// empty name means the value itself.
    static const std::type_info* typeOf(const std::type_info& type, const std::string& member);

    /// Returns the name of the component \p inner of the component \p outer; either may be
    /// empty.
    static std::string join(const std::string& outer, const std::string& inner);

    /// Returns the name that was joined to \p outer to make \p joined.
    /// \pre \p joined is the result of `join` with \p outer.
    static std::string rest(const std::string& joined, const std::string& outer);

    /// Returns true if a change of one component may change the other: they are the same, or
    /// one contains the other.
    static bool overlap(std::string_view a, std::string_view b) noexcept;

    /// Returns the names of the components of \p type in the order of their declaration.
    static std::vector<std::string> names(const std::type_info& type);

private:
    std::string m_key;
    std::vector<Component> m_components;
};

} // namespace Orla
