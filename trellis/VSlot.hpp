#pragma once

#include <trellis/Export.hpp>
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
        AddedLater = 0x08,    ///< added from outside, not by the object's own declaration
        StaysValid = 0x10     ///< an output that is valid also after an update that failed
    };

    VSlot(VSlotContainer& container, const std::string& name, int expertLevel, const StrongPtr<VParameter>& parameter,
          std::uint8_t flags);
    VSlot(const VSlot&) = delete;
    VSlot& operator=(const VSlot&) = delete;
    ~VSlot() override;

    const std::string& name() const noexcept;
    int expertLevel() const noexcept { return m_expertLevel; }

    /// Null once the container is destroyed.
    VSlotContainer* container() const noexcept { return m_container; }

    const StrongPtr<VParameter>& parameter() const noexcept { return m_parameter; }
    const StrongPtr<VParameter>& ownParameter() const noexcept { return m_ownParameter; }
    const std::string& member() const noexcept;

    bool isConnected() const noexcept { return m_parameter != m_ownParameter; }

    /// False for an input that was added with another container's parameter.
    bool ownsParameter() const noexcept { return m_ownsParameter; }

    /// True if the slot reads an output, or another container's input.
    bool readsOthers() const noexcept { return m_readsOthers; }

    std::uint8_t flags() const noexcept { return m_flags; }
    bool hasFlag(Flag flag) const noexcept { return (m_flags & flag) != 0; }
    void setFlag(Flag flag) noexcept { changeFlags(static_cast<std::uint8_t>(m_flags | flag)); }
    void clearFlag(Flag flag) noexcept { changeFlags(static_cast<std::uint8_t>(m_flags & ~flag)); }

    /// The type of value that the slot takes or offers.
    const std::type_info& type() const { return m_ownParameter->valueType(); }

    /// The value that the slot refers to in \p pool, its component if it names a
    /// member; null if the value is missing.
    StrongPtr<VValueBase> getValueBase(const StrongPtr<ValuePool>& pool) const;

    /// As `getValueBase`, but creates a missing variable.
    StrongPtr<VValueBase> getLocalValue(const StrongPtr<ValuePool>& pool) const;

    /// Reads \p text into the slot's value in \p pool, creating the variable if it is
    /// missing, and announces the change. Returns false, and changes nothing, if the text
    /// is refused or \p pool is null.
    bool set(const StrongPtr<ValuePool>& pool, const std::string& text) const;

    /// Writes \p value and announces the change. Returns false, and changes nothing, if
    /// the slot's values are not of type \p T. Types are not converted: pass `5.0` to a
    /// slot of type `double`. Include `fathom/VValue.hpp` to use it.
    template<class T>
        requires(!std::convertible_to<const T&, std::string>)
    bool set(const StrongPtr<ValuePool>& pool, const T& value) const;

    /// The slot's value in \p pool as text; empty if the value is missing.
    std::optional<std::string> text(const StrongPtr<ValuePool>& pool) const;

    /// A copy of the slot's value in \p pool; empty if the value is missing or not of type
    /// \p T. Include `fathom/VValue.hpp` to use it.
    template<class T>
    std::optional<T> get(const StrongPtr<ValuePool>& pool) const;

    /// Reads \p text into the initial value that new pools start from. Returns false,
    /// and changes nothing, if the text is refused.
    bool setInitialText(const std::string& text);

    /// Where the slot's container keeps its values.
    VSlotPlace place() const noexcept { return {m_container, m_cell}; }

    /// Creates the component that the slot reads as a value of its own; null if
    /// \p value does not have it.
    StrongPtr<VValueBase> componentOf(VValueBase& value) const;

private:
    friend class Detail::Wiring;
    struct Link;

    void changeFlags(std::uint8_t flags) noexcept;

    VSlotContainer* m_container;
    StrongPtr<VParameter> m_parameter;
    StrongPtr<VParameter> m_ownParameter;
    std::unique_ptr<const std::string> m_name; // null if it is the own parameter's
    std::unique_ptr<Link> m_link;              // null for a slot without a connection
    std::uint32_t m_readerIndex = NotReading;  // among the readers of the parameter
    std::uint32_t m_cell = VSlotPlace::NoCell;
    int m_expertLevel;
    std::uint8_t m_flags;
    bool m_ownsParameter = true;
    bool m_readsOthers = false;
    bool m_keepsCell = false; // its cell is not given to another slot when it is removed

    static constexpr std::uint32_t NotReading = ~std::uint32_t{0};
};

/// A set of slots in the order in which they were made, found by name.
class TRELLIS_API VSlotSet {
public:
    using const_iterator = std::vector<StrongPtr<VSlot>>::const_iterator;

    /// Returns false if the set has a slot of that name.
    bool add(const StrongPtr<VSlot>& slot);

    /// Returns false if the slot is not in the set. Takes the same time however many
    /// slots there are; the gap is closed before the slots are visited again.
    bool remove(const VSlot& slot) noexcept;

    /// The slot of that name, or null.
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
    std::unique_ptr<Index> m_index; // of a large set
};

} // namespace Orla
