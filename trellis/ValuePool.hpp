#pragma once

#include <trellis/Export.hpp>
#include <trellis/VValueBase.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orla {

class PoolRoot;
class VParameter;
class VScope;
class VSlotContainer;

/// One evaluation context: the parameters' values ("variables") for one run,
/// one viewer, one time step or one case of a parameter sweep.
///
/// Connected objects share a parameter, so what one writes in a pool the others
/// read in that pool. Another pool does not see it.
///
/// The framework keeps the variables of each slot container in a scope of their
/// own under the pool, so that objects with inputs of the same name do not meet.
/// Every look-up by parameter works on the pool and on its scopes alike.
///
/// A pool is used by one thread at a time. Its memory follows its variables.
class TRELLIS_API ValuePool : public Loam::ReferenceBase<ValuePool> {
public:
    /// \p name appears in messages.
    explicit ValuePool(std::string name = {});
    ValuePool(const ValuePool&) = delete;
    ValuePool& operator=(const ValuePool&) = delete;
    ~ValuePool() override;

    /// The name given; a scope has its pool's.
    const std::string& Name() const noexcept;

    /// The variable entered directly into this pool under \p name, or null.
    StrongPtr<VValueBase> retrieveValue(const std::string& name) const;

    /// Enters \p value as the variable of \p parameter, under the parameter's
    /// name. Replaces what the pool held for the parameter and under the name.
    void createVariable(const VParameter* parameter, const StrongPtr<VValueBase>& value);

    /// The variable of \p parameter, wherever under the pool it was entered; null
    /// if there is none.
    StrongPtr<VValueBase> findVariable(const VParameter& parameter) const
    {
        return StrongPtr<VValueBase>(lookUp(parameter));
    }

    /// As `findVariable`, without taking part in owning the value.
    VValueBase* lookUp(const VParameter& parameter) const;

    /// How many parameters have a variable in the pool and its scopes.
    std::size_t variableCount() const;

    /// How many slot containers have a scope in the pool.
    std::size_t scopeCount() const;

    /// The pool that `this` is or belongs to.
    ValuePool& root() noexcept { return *m_root; }
    const ValuePool& root() const noexcept { return *m_root; }

    /// The scope of \p container, made if it is missing.
    StrongPtr<ValuePool> scopeOf(VSlotContainer& container);

private:
    friend class PoolRoot;
    friend class VParameter;
    friend class VScheduler;
    friend class VScope;
    friend class VSlotContainer;

    struct Variable {
        std::string name;
        StrongPtr<VValueBase> value;
        std::uint64_t parameter;
    };

    struct Scope {};

    /// A scope under \p root.
    ValuePool(Scope, ValuePool& root);

    Variable* findName(const std::string& name) const;
    void enterName(const std::string& name, const StrongPtr<VValueBase>& value, std::uint64_t parameter);
    void removeName(const VParameter& parameter);
    void forgetParameter(const VParameter& parameter);
    void replaced();

    ValuePool* m_root;           // this, for a pool that is no scope
    std::uint64_t m_version = 0; // unique in the process; changes when a variable is replaced or removed
    std::unique_ptr<PoolRoot> m_data; // null for a scope
    std::vector<Variable> m_variables;
    mutable std::unique_ptr<std::unordered_map<std::string, std::size_t>> m_names; // only for many variables
};

} // namespace Orla
