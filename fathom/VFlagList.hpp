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
/// Text form: a blank, a sign and the name for each flag, ordered by name:
/// ` +a -b`. Reading takes names without a sign as well, and those are on.
class FATHOM_API FlagList {
    using Flags = std::map<std::string, bool, std::less<>>;

public:
    using value_type = Flags::value_type;
    using const_iterator = Flags::const_iterator;

    /// No flags.
    FlagList();

    /// The flags that the pieces of \p text between separators tell.
    FlagList(std::string_view text, char separator);

    FlagList(const FlagList&);
    FlagList(FlagList&&) noexcept;
    FlagList& operator=(const FlagList&);
    FlagList& operator=(FlagList&&) noexcept;
    ~FlagList();

    /// Sets the flag named behind the first character: off for "-", on for "+".
    /// Without a sign all of \p item is the name, and the flag is on. The name is
    /// taken as it is, with blanks and further signs, and may be empty. False, and
    /// nothing changed, for an empty \p item.
    bool addFlag(std::string_view item);

    /// Sets the flags that the pieces of \p text tell, in order, and keeps the
    /// others. Returns how many pieces there are: empty ones count, except for one
    /// at the end.
    unsigned long long addFlagsFromString(std::string_view text, char separator);

    /// True if the flag was ever set, on or off.
    bool contains(std::string_view name) const noexcept { return m_flags.find(name) != m_flags.end(); }

    /// Whether the flag is on, with \p present set; false for a flag that was never
    /// set, with \p present cleared.
    bool operator()(std::string_view name, bool& present) const noexcept;

    std::size_t size() const noexcept { return m_flags.size(); }
    bool empty() const noexcept { return m_flags.empty(); }

    /// Pairs of name and state, ordered by name byte by byte.
    const_iterator begin() const noexcept { return m_flags.begin(); }
    const_iterator end() const noexcept { return m_flags.end(); }

    /// Prints each flag to standard output, as `a: true`.
    void speak() const;

    /// Same names in the same states.
    friend bool operator==(const FlagList&, const FlagList&) = default;

private:
    friend struct VValueTrait<FlagList>;

    Flags m_flags;
    bool m_absentValue = false;
};

template<>
struct FATHOM_API VValueTrait<FlagList> {
    static std::string Text(const FlagList& flags);

    /// Replaces all flags by those that \p text names, between blanks. Accepts
    /// every text.
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
    /// Declares nothing; to be assigned to.
    TypedSlot();

    /// \p flagNames are flags between blanks, on unless one begins with "-".
    TypedSlot(VSlotContainer* that, const std::string& name, const std::string& flagNames, int expertLevel);
};

/// The same as a member of a slot container's class.
template<>
class FATHOM_API VSlotContainer::in<bool[], -32000> : public TypedSlot<bool[]> {
public:
    in();

    /// Implicit: the declaration of a member may begin with the slot itself.
    in(const TypedSlot<bool[]>& slot);

    in(VSlotContainer* that, const std::string& name, const std::string& flagNames, int expertLevel);
};

} // namespace Orla
