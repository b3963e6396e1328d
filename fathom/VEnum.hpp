#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

#include <loam/StringList.hpp>

#include <cstddef>
#include <initializer_list>
#include <string>

namespace Orla {

using Loam::StringList;

/// Returns true if one text is a prefix of the other, ignoring letter case: "Lin" matches
/// "linear", and the empty text matches everything. Only A to Z have two cases, in every
/// locale.
/// \pre Neither text is null.
FATHOM_API bool isEqualCaseIndependent(const char* a, const char* b) noexcept;

/// The names of an enumeration's cases, and the chosen one.
///
/// Text form: the chosen name, then all names in braces, `b{a}{b}{c}`. Nothing is escaped.
class FATHOM_API VEnumSelection : public StringList {
public:
    /// Creates a selection without names.
    VEnumSelection();

    /// Copies the names of \p names and chooses the first.
    explicit VEnumSelection(const StringList& names);

    /// Takes the pieces of \p text between separators as names and chooses the first.
    VEnumSelection(const std::string& text, char separator);

    VEnumSelection(const VEnumSelection&) = default;
    VEnumSelection& operator=(const VEnumSelection&) = default;
    ~VEnumSelection() override;

    /// Chooses the name at \p number. Returns false and changes nothing if it is past the end.
    bool select(unsigned number) noexcept;

    /// Chooses the first name equal to \p name. Returns false and changes nothing if no name
    /// is equal.
    bool select(const std::string& name) noexcept;

    /// Returns the chosen number, counted from 0. It may be past the end after names were
    /// removed.
    unsigned selectedNumber() const noexcept { return m_selected; }

    /// Returns the name at \p number, or the empty text past the end.
    const std::string& operator[](std::size_t number) const noexcept;

    /// Returns the chosen name, or the empty text if the number is past the end.
    const std::string& selectedName() const noexcept { return (*this)[m_selected]; }

    std::string toString() const;

    /// Reads names and choice. A text without "{" chooses one of the existing names. Any other
    /// text replaces the names and chooses the one equal to the text before the first "{". The
    /// new names keep their closing brace, so text written by `toString` is refused; it leaves
    /// the new names with the first one chosen. Returns false and changes nothing for the
    /// empty text.
    bool fromString(const std::string& text);

    /// Compares the names in order, and the chosen number.
    friend bool operator==(const VEnumSelection& a, const VEnumSelection& b) noexcept
    {
        return a.m_selected == b.m_selected && static_cast<const StringList&>(a) == static_cast<const StringList&>(b);
    }

private:
    unsigned m_selected = 0;
};

/// The value of a parameter that offers a fixed list of named cases, one of them chosen.
///
/// Copies share names and choice: a choice made through one copy applies to all. Values,
/// inputs and outputs do not share them with the enums that they are given or return, nor with
/// each other: to choose in a pool, pass the changed enum to `TypedSlot::set`. Only `getValue`
/// and `TypedSlot::read` hand out what a value holds.
class FATHOM_API Enum {
public:
    /// The result of a query for a case if no case matches.
    static constexpr unsigned None = ~0u;

    /// Creates an empty enum: it offers no cases, and nothing is chosen.
    Enum() noexcept = default;

    /// Takes the first \p count names and chooses the first. Skips null names.
    Enum(const char* const* names, unsigned count);

    /// The same for the names in braces: `Enum{"linear", "cubic"}`. Implicit, so an input of
    /// this type can be declared with its names.
    Enum(std::initializer_list<const char*> names) : Enum(names.begin(), static_cast<unsigned>(names.size())) {}

    /// Shares \p selection; null makes an empty enum.
    explicit Enum(const StrongPtr<VEnumSelection, StringList>& selection) noexcept : m_selection{selection} {}

    /// Appends a case; the same name may be added twice. The first case added to an empty enum
    /// is chosen. Returns false for an empty or null name.
    bool addCase(const std::string& name);
    bool addCase(const char* name);

    /// Chooses a case for all copies. Returns false and changes nothing if it does not exist.
    bool select(unsigned number) noexcept { return m_selection && m_selection->select(number); }
    bool select(const std::string& name) noexcept { return m_selection && m_selection->select(name); }

    /// Returns names and choice, for reading; null for an empty enum. Valid while this enum or a
    /// copy of it exists: keep the enum that `TypedSlot::value` returns.
    const VEnumSelection* selection() const noexcept { return m_selection.get(); }

    /// Returns true if the chosen name is exactly \p name.
    bool Equal(const std::string& name) const noexcept;

    /// Returns true if the chosen name matches \p name by `isEqualCaseIndependent`.
    bool iEqual(const std::string& name) const noexcept;

    /// Returns the index of the candidate that is exactly the chosen name, counted from 0, or
    /// `None` if no candidate is. Skips null candidates.
    unsigned Case(const char* c0, const char* c1 = nullptr, const char* c2 = nullptr, const char* c3 = nullptr,
                  const char* c4 = nullptr, const char* c5 = nullptr, const char* c6 = nullptr,
                  const char* c7 = nullptr, const char* c8 = nullptr, const char* c9 = nullptr,
                  const char* c10 = nullptr) const noexcept;

    /// As `Case`, but compares with `isEqualCaseIndependent`. The first match decides, so an
    /// empty candidate always matches.
    unsigned iCase(const char* c0, const char* c1 = nullptr, const char* c2 = nullptr, const char* c3 = nullptr,
                   const char* c4 = nullptr, const char* c5 = nullptr, const char* c6 = nullptr,
                   const char* c7 = nullptr, const char* c8 = nullptr, const char* c9 = nullptr,
                   const char* c10 = nullptr) const noexcept;

    /// Returns the first index of the chosen name in \p names, or `None` if \p names lacks it.
    unsigned operator()(const char* const* names, unsigned count) const noexcept;
    unsigned operator()(const StrongPtr<StringList>& names) const noexcept;

    /// Compares the names in order and the choice, whether shared or not.
    friend bool operator==(const Enum& a, const Enum& b) noexcept
    {
        if (a.m_selection == b.m_selection)
            return true;
        return a.m_selection && b.m_selection && *a.m_selection == *b.m_selection;
    }

private:
    StrongPtr<VEnumSelection, StringList> m_selection;
};

template<>
struct FATHOM_API VValueTrait<Enum> {
    /// Returns the text of `VEnumSelection::toString`, or the empty text for an empty enum.
    static std::string Text(const Enum& value);

    /// Chooses the name before the first "{", for all copies of \p value; ignores the rest of
    /// the text. Returns false and keeps the choice if the name does not exist. Text never
    /// changes the names.
    static bool setValueFromText(Enum& value, const std::string& text);
};

/// A copied value has its own names and choice, so a choice in one pool does not affect other
/// pools.
template<>
struct FATHOM_API VValueOperations<Enum> {
    static bool areDifferent(const Enum& a, const Enum& b) noexcept { return !(a == b); }
    static Enum copyOf(const Enum& value);
};

} // namespace Orla
