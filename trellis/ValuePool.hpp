#pragma once

#include <trellis/Export.hpp>
#include <trellis/VFrame.hpp>
#include <trellis/VValueBase.hpp>

#include <cstddef>
#include <string>

namespace Orla {

class VParameter;

namespace Detail {
class PoolState;
}

/// One evaluation context: the parameters' values ("variables") for one run,
/// one viewer, one time step or one case of a parameter sweep.
///
/// Connected objects share a parameter, so what one writes in a pool the others
/// read in that pool. Other pools do not see it.
///
/// The variables of a slot container are kept in its frame, so inputs of the same name
/// are separate. Variables that are entered by name are kept in a table of the pool.
///
/// A pool belongs to the network of the first object that is used in it, until that
/// network is destroyed. It is used by one thread at a time; several pools of one
/// network may be used by several threads at the same time. Its memory grows with its
/// variables, not with the network.
class TRELLIS_API ValuePool : public Loam::ReferenceBase<ValuePool> {
public:
    /// \p name appears in messages.
    explicit ValuePool(std::string name = {});
    ValuePool(const ValuePool&) = delete;
    ValuePool& operator=(const ValuePool&) = delete;
    ~ValuePool() override;

    const std::string& Name() const noexcept;

    /// The variable entered under \p name, or null.
    StrongPtr<VValueBase> retrieveValue(const std::string& name) const;

    /// Enters \p value as the variable of \p parameter, under the parameter's
    /// name. Replaces what the pool held for the parameter and under the name.
    void createVariable(const VParameter* parameter, const StrongPtr<VValueBase>& value);

    /// The variable of \p parameter, or null.
    StrongPtr<VValueBase> findVariable(const VParameter& parameter) const
    {
        return StrongPtr<VValueBase>(lookUp(parameter));
    }

    /// As `findVariable`, without sharing in owning the value.
    VValueBase* lookUp(const VParameter& parameter) const;

    /// How many parameters have a variable in the pool.
    std::size_t variableCount() const;

    /// The pool that is evaluated. This is the pool itself, except in concurrent updates:
    /// each gets a view, a pool object of its own that shares the variables of the
    /// evaluated one. Null once the evaluated pool is destroyed.
    StrongPtr<ValuePool> root() const;

    /// The frame of the update that runs with this pool; null outside of updates.
    VFrame* runningFrame() const noexcept { return m_running; }

    /// For the framework itself; null while the pool has never been used.
    Detail::PoolState* state() const noexcept { return m_state; }
    Detail::PoolState& stateOrNew();

private:
    friend class Detail::PoolState;
    friend class Detail::Update;

    /// A view of the pool of \p state.
    explicit ValuePool(Detail::PoolState& state);

    std::string m_name;
    Detail::PoolState* m_state = nullptr; // owned, unless the pool is a view
    VFrame* m_running = nullptr;
    bool m_isView = false;
};

} // namespace Orla
