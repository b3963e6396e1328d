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

/// A named input or output of a slot container. Owns a prototype value, from
/// which each pool's variable starts.
///
/// A parameter holds nothing that belongs to a pool; evaluating a network in several
/// pools therefore does not write to it.
///
/// The order of the virtual operations is part of the binary interface.
class TRELLIS_API VParameter : public ValueNotifierList {
public:
    /// \pre \p value is not null.
    VParameter(const StrongPtr<VValueBase>& value, const std::string& name,
               const StrongPtr<VCreationPreferences, InterfaceBase>& preferences);
    VParameter(const VParameter&) = delete;
    VParameter& operator=(const VParameter&) = delete;
    ~VParameter() override;

    /// The prototype value itself.
    virtual StrongPtr<VValueBase> DefaultValue() const;

    /// A parameter of the same name, preferences and shadows that shares the
    /// prototype value.
    virtual StrongPtr<VParameter, ValueNotifierList> copy() const;

    /// The variable in \p pool: the one entered there under the parameter's name if
    /// it is of the same type, else a new one with the prototype's content, and
    /// \p pool becomes a shadow. Null for a null pool.
    virtual StrongPtr<VValueBase> createLocalVariable(const StrongPtr<ValuePool>& pool) const;

    /// Lets the component \p member of the prototype take its content from
    /// \p value and announces the change. Variables that exist keep theirs.
    virtual bool setGlobalValue(const StrongPtr<VValueBase>& value, const std::string& member) const;

    /// An independent value with the prototype's content.
    virtual StrongPtr<VValueBase> newValue() const;

    const std::string& Name() const noexcept { return m_name; }
    const StrongPtr<VCreationPreferences, InterfaceBase>& creationPreferences() const noexcept { return m_preferences; }

    const std::type_info& valueType() const { return m_value->getType(); }

    /// The container that declared the parameter as its input.
    void setCreator(const WeakPtrImpl<VSlotContainer>& creator) { m_creator = creator; }
    const WeakPtrImpl<VSlotContainer>& creator() const noexcept { return m_creator; }

    /// The container whose output the parameter is.
    void setSource(const WeakPtrImpl<VSlotContainer>& source) { m_source = source; }
    const WeakPtrImpl<VSlotContainer>& source() const noexcept { return m_source; }

    /// The container that writes the parameter: its source, else its creator.
    StrongPtr<VSlotContainer> owner() const;

    /// The parameter's own switch, on at first. Output operators of a parameter
    /// that is switched off neither read nor write.
    bool isEnabled() const noexcept { return m_enabled; }
    void setEnabled(bool enabled) noexcept;

    /// The variable in \p pool, or its component \p member. Creates nothing:
    /// returns null if the variable is missing, for a null pool, and with \p enabled false.
    StrongPtr<VValueBase> getValueBase(const StrongPtr<ValuePool>& pool, const std::string& member = {},
                                       bool enabled = true) const;

    /// As `getValueBase`, but creates a missing variable. Returns null for a pool that
    /// belongs to another network, too.
    StrongPtr<VValueBase> getLocalValue(const StrongPtr<ValuePool>& pool, const std::string& member = {},
                                        bool enabled = true) const;

    /// Announces that the variable \p value in \p pool was written: its age
    /// advances, the objects that read the parameter are due in the pool, and
    /// each listener is notified once. With \p member, objects that read a
    /// different component are left alone.
    void notifyValueChange(const StrongPtr<VValueBase>& value, const StrongPtr<ValuePool>& pool,
                           const std::string& member = {}) const;

    /// Announces a change of the variable in \p pool or, with a null pool, of the
    /// prototype: then the readers are due in every pool that has a variable.
    void touchValue(const StrongPtr<ValuePool>& pool) const;

    /// The pools that have a variable of their own, and those that were noted as
    /// shadows.
    std::vector<StrongPtr<ValuePool>> shadows() const;

    /// Adds the shadows of \p other to this parameter's.
    void copyShadows(const VParameter& other) const;

    /// The slots that read the parameter now, in no particular order.
    const Detail::PointerList<VSlot>& readers() const noexcept { return m_readers; }

    /// The slot that declared the parameter, or null. Frames of its container keep the
    /// parameter's variables, unless the slot reads another parameter now.
    VSlot* slot() const noexcept { return m_slot; }

private:
    friend class Detail::PoolState;
    friend class Detail::Wiring;

    void noteHolder(ValuePool& pool) const;
    std::vector<StrongPtr<ValuePool>> holders() const;

    Detail::PointerList<VSlot> m_readers;
    VSlot* m_slot = nullptr;
    // Pools that hold a variable outside of frames; guarded by a lock of all parameters.
    mutable std::unique_ptr<PoolList> m_holders;
    StrongPtr<VValueBase> m_value;
    std::string m_name;
    StrongPtr<VCreationPreferences> m_preferences;
    WeakPtrImpl<VSlotContainer> m_creator;
    WeakPtrImpl<VSlotContainer> m_source;
    bool m_enabled = true;
};

} // namespace Orla
