#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

#include <loam/StringList.hpp>

#include <cstddef>
#include <string>

namespace Orla {

using Loam::StringList;

/// True if one text is the beginning of the other, letter case apart: "Lin"
/// matches "linear", and the empty text matches everything. Only A to Z have
/// two cases, under every locale.
/// \pre Neither text is null.
FATHOM_API bool isEqualCaseIndependent(const char* a, const char* b) noexcept;

/// The names of the cases of an enumeration and which of them is chosen.
///
/// Text form: the chosen name, then all names in braces, `b{a}{b}{c}`. Nothing is
/// escaped.
class FATHOM_API VEnumSelection : public StringList {
public:
    /// No names.
    VEnumSelection();

    /// The names of \p names; the first is chosen.
    explicit VEnumSelection(const StringList& names);

    /// The pieces of \p text between separators; the first is chosen.
    VEnumSelection(const std::string& text, char separator);

    VEnumSelection(const VEnumSelection&) = default;
    VEnumSelection& operator=(const VEnumSelection&) = default;
    ~VEnumSelection() override;

    /// Chooses the name at \p number; false, and nothing changed, past the end.
    bool select(unsigned number) noexcept;

    /// Chooses the first name equal to \p name; false, and nothing changed, if
    /// there is none.
    bool select(const std::string& name) noexcept;

    /// Counted from 0. Names that are taken out of the list may leave it past the
    /// end.
    unsigned selectedNumber() const noexcept { return m_selected; }

    /// The name at \p number; the empty text past the end.
    const std::string& operator[](std::size_t number) const noexcept;

    /// The chosen name; the empty text if the number lies past the end.
    const std::string& selectedName() const noexcept { return (*this)[m_selected]; }

    std::string toString() const;

    /// Reads names and choice. A text without "{" is a choice among the names that
    /// are there. Any other text replaces the names, which keep their closing
    /// brace, and chooses the one equal to what stands before the first "{"; so
    /// what `toString` wrote is refused, and leaves the new names behind with the
    /// first one chosen. False, and nothing changed, for the empty text.
    bool fromString(const std::string& text);

    /// Same names in the same order, and the same number chosen.
    friend bool operator==(const VEnumSelection& a, const VEnumSelection& b) noexcept
    {
        return a.m_selected == b.m_selected && static_cast<const StringList&>(a) == static_cast<const StringList&>(b);
    }

private:
    unsigned m_selected = 0;
};

/// A parameter that offers a fixed list of named cases, one of them chosen.
///
/// Copies share names and choice: what is chosen through one is chosen in all. Only
/// values are independent of each other, so that a choice in one pool is not seen
/// in another.
class FATHOM_API Enum {
public:
    /// What asking for a case answers where none fits.
    static constexpr unsigned None = ~0u;

    /// An empty enum: it offers no cases, and nothing is chosen.
    Enum() noexcept = default;

    /// The first \p count names, the first one chosen. Null names are left out.
    Enum(const char* const* names, unsigned count);

    /// Shares \p selection; empty for null.
    explicit Enum(const StrongPtr<VEnumSelection, StringList>& selection) noexcept : m_selection{selection} {}

    /// Adds a case at the end; the same name may be added twice. The first case of
    /// an empty enum is chosen. False for an empty name and for null.
    bool addCase(const std::string& name);
    bool addCase(const char* name);

    /// Chooses a case for all copies; false, and nothing changed, if there is none.
    bool select(unsigned number) noexcept { return m_selection && m_selection->select(number); }
    bool select(const std::string& name) noexcept { return m_selection && m_selection->select(name); }

    /// Names and choice, for reading; null for an empty enum.
    const VEnumSelection* selection() const noexcept { return m_selection.get(); }

    /// True if the chosen name is exactly \p name.
    bool Equal(const std::string& name) const noexcept;

    /// True if the chosen name matches \p name by `isEqualCaseIndependent`.
    bool iEqual(const std::string& name) const noexcept;

    /// Which of the candidates, counted from 0, is exactly the chosen name; `None`
    /// if none is. Null candidates are skipped.
    unsigned Case(const char* c0, const char* c1 = nullptr, const char* c2 = nullptr, const char* c3 = nullptr,
                  const char* c4 = nullptr, const char* c5 = nullptr, const char* c6 = nullptr,
                  const char* c7 = nullptr, const char* c8 = nullptr, const char* c9 = nullptr,
                  const char* c10 = nullptr) const noexcept;

    /// The same with `isEqualCaseIndependent`: the first candidate that matches
    /// decides, so an empty one always does.
    unsigned iCase(const char* c0, const char* c1 = nullptr, const char* c2 = nullptr, const char* c3 = nullptr,
                   const char* c4 = nullptr, const char* c5 = nullptr, const char* c6 = nullptr,
                   const char* c7 = nullptr, const char* c8 = nullptr, const char* c9 = nullptr,
                   const char* c10 = nullptr) const noexcept;

    /// Where the chosen name stands first among \p names; `None` if it does not.
    unsigned operator()(const char* const* names, unsigned count) const noexcept;
    unsigned operator()(const StrongPtr<StringList>& names) const noexcept;

    /// Same names in the same order and the same choice, shared or not.
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
    /// As `VEnumSelection::toString`; the empty text for an empty enum.
    static std::string Text(const Enum& value);

    /// Chooses the name before the first "{", for all copies of \p value; the rest
    /// of the text is ignored. False, and the former choice stays, if it is not
    /// among the names, which no text changes.
    static bool setValueFromText(Enum& value, const std::string& text);
};

/// The copy of a value has a selection of its own, so that what is chosen in one
/// pool no other pool sees.
template<>
struct FATHOM_API VValueOperations<Enum> {
    static bool areDifferent(const Enum& a, const Enum& b) noexcept { return !(a == b); }
    static Enum copyOf(const Enum& value);
};

} // namespace Orla
