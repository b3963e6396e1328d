#pragma once

#include <trellis/Export.hpp>
#include <trellis/VFrame.hpp>
#include <trellis/VValueBase.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace Orla {

class VParameter;

namespace Detail {
class PoolState;
}

/// One evaluation context: the parameters' values ("variables") for one run, one viewer, one
/// time step or one case of a parameter sweep.
///
/// Connected objects share a parameter, so each reads what another writes in the same pool.
/// Other pools are not affected.
///
/// The variables of a slot container are stored in its frame, so inputs with the same name are
/// separate. Variables that are entered by name are stored in a table of the pool.
///
/// A pool belongs to the network of the first object that is used in it, until that network is
/// destroyed. Only one thread may use a pool at a time; several threads may use different
/// pools of one network at the same time. A pool's memory grows with its variables, not with
/// the network.
///
/// `docs/architecture.md` shows the path of a value through the classes.
class TRELLIS_API ValuePool : public Loam::ReferenceBase<ValuePool> {
public:
    /// \p name appears in messages. \p resultTag distinguishes the files that are written during
    /// the evaluation from those of other pools; see `VObject::resultFile`.
    explicit ValuePool(std::string name = {}, std::string resultTag = {});
    ValuePool(const ValuePool&) = delete;
    ValuePool& operator=(const ValuePool&) = delete;
    ~ValuePool() override;

    const std::string& Name() const noexcept;
    const std::string& resultTag() const noexcept { return m_resultTag; }

    /// Replaces the result tag, between evaluations of the pool.
    void setResultTag(std::string tag) noexcept { m_resultTag = std::move(tag); }

    /// Returns the variable entered under \p name, or null.
    StrongPtr<VValueBase> retrieveValue(const std::string& name) const;

    /// Enters \p value as the variable of \p parameter, under the parameter's name. Replaces
    /// the pool's previous values for the parameter and for the name.
    void createVariable(const VParameter* parameter, const StrongPtr<VValueBase>& value);

    /// Returns the variable of \p parameter, or null.
    StrongPtr<VValueBase> findVariable(const VParameter& parameter) const
    {
        return StrongPtr<VValueBase>(lookUp(parameter));
    }

    /// As `findVariable`, but returns a pointer that does not own the value.
    VValueBase* lookUp(const VParameter& parameter) const;

    /// Returns the number of parameters that have a variable in the pool.
    std::size_t variableCount() const;

    /// Returns the pool being evaluated. This is the pool itself, except in concurrent
    /// updates: each of them gets a view, a separate pool object that shares the variables of
    /// the evaluated pool. Returns null once the evaluated pool is destroyed.
    StrongPtr<ValuePool> root() const;

    /// Returns the frame of the update that runs with this pool; null outside updates.
    VFrame* runningFrame() const noexcept { return m_running; }

    /// Notes that the running update has written the output in \p cell of its frame.
    void noteWritten(std::uint32_t cell) noexcept { m_written |= bitOf(cell); }

    /// Returns true if the running update has written the output in \p cell. Only the first 64
    /// cells are noted.
    bool hasWritten(std::uint32_t cell) const noexcept { return (m_written & bitOf(cell)) != 0; }

    /// For internal use; null if the pool has never been used.
    Detail::PoolState* state() const noexcept { return m_state; }
    Detail::PoolState& stateOrNew();

private:
    friend class Detail::PoolState;
    friend class Detail::Update;

    /// Creates a view of the pool of \p state.
    explicit ValuePool(Detail::PoolState& state);

    static constexpr std::uint64_t bitOf(std::uint32_t cell) noexcept
    {
        return cell < 64 ? std::uint64_t{1} << cell : 0;
    }

    std::string m_name;
    std::string m_resultTag;
    Detail::PoolState* m_state = nullptr; // owned, unless the pool is a view
    VFrame* m_running = nullptr;
    std::uint64_t m_written = 0; // one bit per cell that the running update has written
    bool m_isView = false;
};

} // namespace Orla
