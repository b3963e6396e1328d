#pragma once

#include <fathom/Export.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace Orla {

/// A set of named switches, each on or off.
///
/// Text form: a blank, a sign and the name per flag, ordered by name: ` +a -b`. Names without
/// a sign are also accepted; those flags are on.
class FATHOM_API FlagList {
    using Flags = std::map<std::string, bool, std::less<>>;

public:
    using value_type = Flags::value_type;
    using const_iterator = Flags::const_iterator;

    /// Creates a list without flags.
    FlagList();

    /// Sets the flags in the pieces of \p text between separators; see `addFlagsFromString`.
    FlagList(std::string_view text, char separator);

    FlagList(const FlagList&);
    FlagList(FlagList&&) noexcept;
    FlagList& operator=(const FlagList&);
    FlagList& operator=(FlagList&&) noexcept;
    ~FlagList();

    /// Sets the flag whose name follows the first character: off for "-", on for "+". Without
    /// a sign, \p item is the name, and the flag is on. The name is not modified, may contain
    /// blanks and further signs, and may be empty. Returns false and changes nothing for an
    /// empty \p item.
    bool addFlag(std::string_view item);

    /// Sets the flags in the pieces of \p text, in order, and keeps the others; each piece is
    /// read as by `addFlag`. Returns the number of pieces: empty ones count, except for an
    /// empty last one.
    unsigned long long addFlagsFromString(std::string_view text, char separator);

    /// Removes the flag, as if it had never been set. Returns false if it never was.
    bool removeFlag(std::string_view name);

    /// Returns whether the flag is on; `absentValue()` if it was never set.
    bool isOn(std::string_view name) const noexcept;

    /// Returns the state that flags have that were never set: false.
    bool absentValue() const noexcept { return m_absentValue; }

    /// Returns true if the flag was ever set, on or off.
    bool contains(std::string_view name) const noexcept { return m_flags.find(name) != m_flags.end(); }

    /// As `isOn`, and sets \p present to whether the flag was ever set.
    bool operator()(std::string_view name, bool& present) const noexcept;

    std::size_t size() const noexcept { return m_flags.size(); }
    bool empty() const noexcept { return m_flags.empty(); }

    /// Iterates over pairs of name and state, ordered by name byte by byte.
    const_iterator begin() const noexcept { return m_flags.begin(); }
    const_iterator end() const noexcept { return m_flags.end(); }

    /// Prints each flag to standard output, as `a: true`.
    void speak() const;

    /// Compares names and states; a flag that is off differs from one that was never set.
    friend bool operator==(const FlagList&, const FlagList&) = default;

private:
    friend struct VValueTrait<FlagList>;

    Flags m_flags;
    bool m_absentValue = false;
};

template<>
struct FATHOM_API VValueTrait<FlagList> {
    static std::string Text(const FlagList& flags);

    /// Replaces all flags by those in \p text, separated by blanks. Accepts every text.
    static bool setValueFromText(FlagList& flags, const std::string& text);
};

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<FlagList>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<FlagList>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<FlagList>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<FlagList>;
extern template class FATHOM_EXTERN_TEMPLATE TypedSlot<FlagList>;

/// Declares an input of type `FlagList` by the names of its flags.
template<>
class FATHOM_API TypedSlot<bool[]> : public TypedSlot<FlagList> {
public:
    /// Declares no input; for later assignment.
    TypedSlot();

    /// \p flagNames holds the flags, separated by blanks; each is on unless it begins with
    /// "-".
    TypedSlot(VSlotContainer* that, const std::string& name, const std::string& flagNames, int expertLevel);

    /// The same with a description; see `VDescription`.
    TypedSlot(VSlotContainer* that, const std::string& name, const std::string& flagNames,
              const VDescriptionOf<FlagList>& description, int expertLevel = 0)
        : TypedSlot<FlagList>{that, name, FlagList{flagNames, ' '}, description, expertLevel}
    {
    }
};

/// The same input as a member of a slot container's class.
template<>
class FATHOM_API VSlotContainer::in<bool[], -32000> : public TypedSlot<bool[]> {
public:
    in();

    /// Implicit, so that a slot can initialise the member directly.
    in(const TypedSlot<bool[]>& slot);

    in(VSlotContainer* that, const std::string& name, const std::string& flagNames, int expertLevel);
};

} // namespace Orla
