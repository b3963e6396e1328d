#pragma once

#include <trellis/Export.hpp>
#include <trellis/VParameter.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orla {

class VSlotContainer;

/// A container's named input or output. Refers to a parameter: by default the
/// container's own and, once attached, another object's output, with an optional
/// member name that selects a component of the value.
class TRELLIS_API VSlot : public Loam::ReferenceBase<VSlot> {
public:
    /// Bits of the flag byte.
    enum Flag : std::uint8_t {
        AutoConnected = 0x01, ///< the framework connects it where the user does not
        Passive = 0x02,       ///< a change of its value does not make the object due
        Output = 0x04,        ///< made by registering an output
        AddedLater = 0x08     ///< added from outside, not by the object's own declaration
    };

    VSlot(VSlotContainer& container, const std::string& name, int expertLevel, const StrongPtr<VParameter>& parameter,
          std::uint8_t flags);
    VSlot(const VSlot&) = delete;
    VSlot& operator=(const VSlot&) = delete;
    ~VSlot() override;

    const std::string& name() const noexcept { return m_name; }
    int expertLevel() const noexcept { return m_expertLevel; }

    /// Null once the container is gone.
    VSlotContainer* container() const noexcept { return m_container; }

    const StrongPtr<VParameter>& parameter() const noexcept { return m_parameter; }
    const StrongPtr<VParameter>& ownParameter() const noexcept { return m_ownParameter; }
    const std::string& member() const noexcept;

    bool isConnected() const noexcept { return m_parameter != m_ownParameter; }

    /// False for an input that was added with another container's parameter.
    bool ownsParameter() const noexcept { return m_ownsParameter; }

    /// True if somebody's output, or another container's input, is read.
    bool readsOthers() const noexcept { return m_readsOthers; }

    std::uint8_t flags() const noexcept { return m_flags; }
    bool hasFlag(Flag flag) const noexcept { return (m_flags & flag) != 0; }
    void setFlag(Flag flag) noexcept { m_flags = static_cast<std::uint8_t>(m_flags | flag); }
    void clearFlag(Flag flag) noexcept { m_flags = static_cast<std::uint8_t>(m_flags & ~flag); }

    /// The type of value that the slot takes or offers.
    const std::type_info& type() const { return m_ownParameter->valueType(); }

    /// The value that the slot refers to in \p pool, its component if it names a
    /// member; null where there is none.
    StrongPtr<VValueBase> getValueBase(const StrongPtr<ValuePool>& pool) const
    {
        return m_parameter->getValueBase(pool, member());
    }

    /// As `getValueBase`, but makes the variable where there is none.
    StrongPtr<VValueBase> getLocalValue(const StrongPtr<ValuePool>& pool) const
    {
        return m_parameter->getLocalValue(pool, member());
    }

    /// Reads \p text into the initial value that new pools start from. False, and
    /// nothing changed, if the text is refused.
    bool setInitialText(const std::string& text);

private:
    friend class VParameter;
    friend class VSlotContainer;

    void refersTo(const StrongPtr<VParameter>& parameter, const std::string& member, const VSlot* leader);
    void join();
    void leave() noexcept;

    VSlotContainer* m_container;
    StrongPtr<VParameter> m_parameter;
    std::unique_ptr<const std::string> m_member; // null for the value itself
    std::uint8_t m_flags;
    bool m_ownsParameter = true;
    bool m_readsOthers = false;
    int m_expertLevel;
    std::size_t m_readerIndex = NotReading;
    StrongPtr<VParameter> m_ownParameter;
    std::string m_name;

    // Slots that were connected to this one where it passes its input on, and the
    // one that this slot was connected to in that way; compared, not looked into.
    std::vector<WeakPtrImpl<VSlot>> m_followers;
    const VSlot* m_leader = nullptr;

    static constexpr std::size_t NotReading = ~std::size_t{0};
};

/// A set of slots in the order in which they were made, found by name.
class TRELLIS_API VSlotSet {
public:
    using const_iterator = std::vector<StrongPtr<VSlot>>::const_iterator;

    /// False if a slot of that name is in already.
    bool add(const StrongPtr<VSlot>& slot);
    bool remove(const VSlot& slot);

    /// Null if there is none.
    const StrongPtr<VSlot>& find(const std::string& name) const;

    std::size_t size() const noexcept { return m_slots.size(); }
    bool empty() const noexcept { return m_slots.empty(); }
    const StrongPtr<VSlot>& operator[](std::size_t index) const { return m_slots[index]; }
    const_iterator begin() const noexcept { return m_slots.begin(); }
    const_iterator end() const noexcept { return m_slots.end(); }

private:
    using Index = std::unordered_map<std::string_view, std::size_t>;

    void buildIndex() const;

    std::vector<StrongPtr<VSlot>> m_slots;
    mutable std::unique_ptr<Index> m_index; // made when a large set is searched
};

} // namespace Orla
