#pragma once

#include <trellis/Export.hpp>
#include <trellis/VDescription.hpp>
#include <trellis/VParameter.hpp>
#include <trellis/VSlotPlace.hpp>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orla {

class VSlotContainer;
class VSlotDescription;

/// A container's named input or output. It refers to a parameter: the container's own by
/// default, another object's output once connected. An optional member name selects a
/// component of the value.
///
/// `docs/architecture.md` shows the path of a value through the classes.
class TRELLIS_API VSlot : public Loam::ReferenceBase<VSlot> {
public:
    /// Bits of the flag byte.
    enum Flag : std::uint8_t {
        AutoConnected = 0x01, ///< connected automatically unless the user connects it
        Passive = 0x02,       ///< a change of its value does not make the object due
        Output = 0x04,        ///< created by registering an output
        AddedLater = 0x08,    ///< added from outside, not declared by the object
        StaysValid = 0x10,    ///< an output that stays valid after a failed update
        NamesResult = 0x20    ///< an input with the name of a file that the object writes
    };

    VSlot(VSlotContainer& container, const std::string& name, int expertLevel, const StrongPtr<VParameter>& parameter,
          std::uint8_t flags);
    VSlot(const VSlot&) = delete;
    VSlot& operator=(const VSlot&) = delete;
    ~VSlot() override;

    const std::string& name() const noexcept;
    int expertLevel() const noexcept { return m_expertLevel; }

    /// Returns null once the slot is removed or its container is destroyed.
    VSlotContainer* container() const noexcept { return m_container; }

    const StrongPtr<VParameter>& parameter() const noexcept { return m_parameter; }
    const StrongPtr<VParameter>& ownParameter() const noexcept { return m_ownParameter; }
    const std::string& member() const noexcept;

    bool isConnected() const noexcept { return m_parameter != m_ownParameter; }

    /// Returns false for an input that was added with another container's parameter.
    bool ownsParameter() const noexcept { return m_ownsParameter; }

    /// Returns true if the slot reads an output, or another container's input.
    bool readsOthers() const noexcept { return m_readsOthers; }

    std::uint8_t flags() const noexcept { return m_flags; }
    bool hasFlag(Flag flag) const noexcept { return (m_flags & flag) != 0; }
    void setFlag(Flag flag) noexcept { changeFlags(static_cast<std::uint8_t>(m_flags | flag)); }
    void clearFlag(Flag flag) noexcept { changeFlags(static_cast<std::uint8_t>(m_flags & ~flag)); }

    /// Returns the type of the slot's values.
    const std::type_info& type() const { return m_ownParameter->valueType(); }

    /// Returns what people need to know about the slot, or null. A slot that passes an input on
    /// has the description of the input.
    const VSlotDescription* description() const noexcept;

    /// Describes the slot, for example an input that a base class declares. Replaces the
    /// description in the creation preferences.
    void describe(const VCheckedDescription& description);

    /// Returns the value that the slot refers to in \p pool, or its component if the slot has
    /// a member name. Returns null if the value is missing.
    StrongPtr<VValueBase> getValueBase(const StrongPtr<ValuePool>& pool) const;

    /// As `getValueBase`, but creates a missing variable.
    StrongPtr<VValueBase> getLocalValue(const StrongPtr<ValuePool>& pool) const;

    /// Parses \p text into the slot's value in \p pool, creating the variable if it is
    /// missing, and announces the change. Returns false and leaves the value unchanged if the
    /// text is refused or \p pool is null.
    bool set(const StrongPtr<ValuePool>& pool, const std::string& text) const;

    /// Writes \p value and announces the change. Returns false and changes nothing if the
    /// slot's values are not of type \p T. Types are not converted: pass `5.0` to a slot of
    /// type `double`. Include `fathom/VValue.hpp` to use it.
    template<class T>
        requires(!std::convertible_to<const T&, std::string>)
    bool set(const StrongPtr<ValuePool>& pool, const T& value) const;

    /// Returns the slot's value in \p pool as text; empty if the value is missing.
    std::optional<std::string> text(const StrongPtr<ValuePool>& pool) const;

    /// Returns a copy of the slot's value in \p pool; empty if the value is missing or not of
    /// type \p T. Include `fathom/VValue.hpp` to use it.
    template<class T>
    std::optional<T> get(const StrongPtr<ValuePool>& pool) const;

    /// Parses \p text into the initial value of new pools. Returns false and changes nothing
    /// if the text is refused.
    bool setInitialText(const std::string& text);

    /// Returns the place of the slot's values in its container's frames.
    VSlotPlace place() const noexcept { return {m_container, m_cell}; }

    /// Creates the component of \p value that the slot reads, or returns \p value itself if
    /// the slot has no member name. Returns null if the component does not exist.
    StrongPtr<VValueBase> componentOf(VValueBase& value) const;

private:
    friend class Detail::Wiring;
    struct Link;

    void changeFlags(std::uint8_t flags) noexcept;

    VSlotContainer* m_container;
    StrongPtr<VParameter> m_parameter;
    StrongPtr<VParameter> m_ownParameter;
    std::unique_ptr<const std::string> m_name; // null if it is the own parameter's name
    std::unique_ptr<Link> m_link;              // null if the slot was never connected or followed
    std::uint32_t m_readerIndex = NotReading;  // index among the parameter's readers
    std::uint32_t m_cell = VSlotPlace::NoCell;
    std::uint32_t m_description = 0; // the number of a VSlotDescription, or 0
    int m_expertLevel;
    std::uint8_t m_flags;
    bool m_ownsParameter = true;
    bool m_readsOthers = false;
    bool m_keepsCell = false; // its cell is not reused after the slot is removed

    static constexpr std::uint32_t NotReading = ~std::uint32_t{0};
};

/// Slots in the order in which they were added, with look-up by name.
class TRELLIS_API VSlotSet {
public:
    using const_iterator = std::vector<StrongPtr<VSlot>>::const_iterator;

    /// Adds a slot. Returns false if the pointer is null or a slot already has the name.
    bool add(const StrongPtr<VSlot>& slot);

    /// Removes a slot. Returns false if it is not in the set. The time does not depend on the
    /// number of slots; the gap is closed before the slots are next iterated.
    bool remove(const VSlot& slot) noexcept;

    /// Returns the slot of that name, or null.
    const StrongPtr<VSlot>& find(const std::string& name) const;

    std::size_t size() const noexcept { return m_slots.size() - m_gaps; }
    bool empty() const noexcept { return size() == 0; }
    const StrongPtr<VSlot>& operator[](std::size_t index) const
    {
        closeGaps();
        return m_slots[index];
    }
    const_iterator begin() const noexcept
    {
        closeGaps();
        return m_slots.begin();
    }
    const_iterator end() const noexcept
    {
        closeGaps();
        return m_slots.end();
    }

    /// Calls \p function with each slot. Slots may be added meanwhile, and several
    /// threads may visit the set at the same time.
    template<class Function>
    void forEach(Function&& function) const
    {
        for (std::size_t i = 0; i < m_slots.size(); ++i) {
            if (m_slots[i])
                function(*m_slots[i]);
        }
    }

private:
    using Index = std::unordered_map<std::string_view, std::size_t>;

    std::size_t positionOf(std::string_view name) const;
    void closeGaps() const noexcept
    {
        if (m_gaps > 0) [[unlikely]]
            closeAllGaps();
    }
    void closeAllGaps() const noexcept;

    static constexpr std::size_t Nowhere = ~std::size_t{0};

    mutable std::vector<StrongPtr<VSlot>> m_slots; // null where a slot was removed
    mutable std::size_t m_gaps = 0;
    std::unique_ptr<Index> m_index; // only for a large set
};

} // namespace Orla
