#pragma once

#include <trellis/Export.hpp>
#include <trellis/VCreationPreferences.hpp>
#include <trellis/ValueNotifierList.hpp>
#include <trellis/VValueBase.hpp>
#include <trellis/detail/PointerList.hpp>

#include <string>
#include <typeinfo>
#include <vector>

namespace Orla {

class VSlot;
class VSlotContainer;

namespace Detail {
class PoolState;
class Wiring;
} // namespace Detail

/// A named input or output of a slot container. Owns a prototype value, the initial value of
/// each pool's variable.
///
/// A parameter holds no data of a pool, so evaluating a network in several pools does not
/// write to it.
///
/// The order of the virtual functions is part of the binary interface.
///
/// `docs/architecture.md` shows the path of a value through the classes.
class TRELLIS_API VParameter : public ValueNotifierList {
public:
    /// \pre \p value is not null.
    VParameter(const StrongPtr<VValueBase>& value, const std::string& name,
               const StrongPtr<VCreationPreferences, InterfaceBase>& preferences);
    VParameter(const VParameter&) = delete;
    VParameter& operator=(const VParameter&) = delete;
    ~VParameter() override;

    /// Returns the prototype value itself.
    virtual StrongPtr<VValueBase> DefaultValue() const;

    /// Returns a parameter with the same name, preferences and shadows that shares the
    /// prototype value.
    virtual StrongPtr<VParameter, ValueNotifierList> copy() const;

    /// Returns the variable in \p pool: the value entered there under the parameter's name if
    /// it has the same type. Otherwise creates a value with the prototype's content and makes
    /// \p pool a shadow. Returns null for a null pool.
    virtual StrongPtr<VValueBase> createLocalVariable(const StrongPtr<ValuePool>& pool) const;

    /// Copies the content of \p value to the component \p member of the prototype and
    /// announces the change. Existing variables keep their values.
    virtual bool setGlobalValue(const StrongPtr<VValueBase>& value, const std::string& member) const;

    /// Returns an independent value with the prototype's content.
    virtual StrongPtr<VValueBase> newValue() const;

    const std::string& Name() const noexcept { return m_name; }
    const StrongPtr<VCreationPreferences, InterfaceBase>& creationPreferences() const noexcept { return m_preferences; }

    const std::type_info& valueType() const { return m_value->getType(); }

    /// The container that declared the parameter as its input.
    void setCreator(const WeakPtrImpl<VSlotContainer>& creator) { m_creator = creator; }
    const WeakPtrImpl<VSlotContainer>& creator() const noexcept { return m_creator; }

    /// The container that has the parameter as its output.
    void setSource(const WeakPtrImpl<VSlotContainer>& source) { m_source = source; }
    const WeakPtrImpl<VSlotContainer>& source() const noexcept { return m_source; }

    /// Returns the container that writes the parameter: its source, else its creator.
    StrongPtr<VSlotContainer> owner() const;

    /// The parameter's own switch, initially on. If it is off, output operators of the
    /// parameter neither read nor write.
    bool isEnabled() const noexcept { return m_enabled; }
    void setEnabled(bool enabled) noexcept;

    /// Returns the variable in \p pool, or its component \p member. Creates nothing: returns
    /// null if the variable is missing, the pool is null, or \p enabled is false.
    StrongPtr<VValueBase> getValueBase(const StrongPtr<ValuePool>& pool, const std::string& member = {},
                                       bool enabled = true) const;

    /// As `getValueBase`, but creates a missing variable. Also returns null if the pool
    /// belongs to another network.
    StrongPtr<VValueBase> getLocalValue(const StrongPtr<ValuePool>& pool, const std::string& member = {},
                                        bool enabled = true) const;

    /// Announces that the variable \p value in \p pool was written: advances its age, makes
    /// the objects that read the parameter due in the pool, and notifies each listener once.
    /// With \p member, objects that read a different component do not become due.
    void notifyValueChange(const StrongPtr<VValueBase>& value, const StrongPtr<ValuePool>& pool,
                           const std::string& member = {}) const;

    /// Announces a change of the variable in \p pool or, if the pool is null, of the
    /// prototype. A change of the prototype makes the readers due in every pool that has a
    /// variable.
    void touchValue(const StrongPtr<ValuePool>& pool) const;

    /// Returns the pools that have their own variable, and those that were added as shadows.
    std::vector<StrongPtr<ValuePool>> shadows() const;

    /// Adds the shadows of \p other to this parameter.
    void copyShadows(const VParameter& other) const;

    /// Returns the slots that currently read the parameter, in no particular order.
    const Detail::PointerList<VSlot>& readers() const noexcept { return m_readers; }

    /// Returns the slot that declared the parameter, or null. Frames of its container hold the
    /// parameter's variables unless the slot reads another parameter.
    VSlot* slot() const noexcept { return m_slot; }

private:
    friend class Detail::PoolState;
    friend class Detail::Wiring;

    void noteHolder(ValuePool& pool) const;
    std::vector<StrongPtr<ValuePool>> holders() const;

    Detail::PointerList<VSlot> m_readers;
    VSlot* m_slot = nullptr;
    // Pools that hold a variable outside frames; guarded by a lock shared by all parameters.
    mutable std::unique_ptr<PoolList> m_holders;
    StrongPtr<VValueBase> m_value;
    std::string m_name;
    StrongPtr<VCreationPreferences> m_preferences;
    WeakPtrImpl<VSlotContainer> m_creator;
    WeakPtrImpl<VSlotContainer> m_source;
    bool m_enabled = true;
};

} // namespace Orla
