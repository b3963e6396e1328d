#pragma once

#include <loam/Export.hpp>
#include <loam/StrongPtr.hpp>

#include <vector>

namespace Loam {

/// Root of optional interfaces that objects exchange without knowing each other's
/// classes: preferences, components, shapes.
class LOAM_API InterfaceBase : public ReferenceBase<InterfaceBase> {
public:
    InterfaceBase() = default;
    ~InterfaceBase() override;
};

/// A set of interfaces, looked up by class.
class LOAM_API InterfaceContainer {
public:
    using const_iterator = std::vector<StrongPtr<InterfaceBase>>::const_iterator;

    /// Adds \p interface. Returns false if it is null or already in the container.
    bool add(const StrongPtr<InterfaceBase>& interface);

    /// Removes \p interface. Returns false if it is not in the container.
    bool remove(const StrongPtr<InterfaceBase>& interface);

    /// Returns the first interface added that is a \p T, or null.
    template<class T>
    StrongPtr<T> find() const
    {
        for (const StrongPtr<InterfaceBase>& interface : m_interfaces) {
            if (StrongPtr<T> found{interface})
                return found;
        }
        return nullptr;
    }

    bool empty() const noexcept { return m_interfaces.empty(); }
    std::size_t size() const noexcept { return m_interfaces.size(); }

    /// Iterates in the order of addition.
    const_iterator begin() const noexcept { return m_interfaces.begin(); }
    const_iterator end() const noexcept { return m_interfaces.end(); }

private:
    std::vector<StrongPtr<InterfaceBase>> m_interfaces;
};

} // namespace Loam
