#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

#include <loam/StringList.hpp>

#include <string>

namespace Orla {

using Loam::StringList;

/// Strings to choose from (the choices), and any number of selected ones, in the order in
/// which they were selected.
class FATHOM_API MultipleStringSelection : public StringList {
public:
    /// Creates a selection without choices; nothing is selected.
    MultipleStringSelection();

    /// Makes \p only the only choice, and selects it.
    explicit MultipleStringSelection(const std::string& only);

    /// Splits both texts at \p separator. Selected strings need not be among the choices.
    MultipleStringSelection(const std::string& selected, const std::string& choices, char separator);

    /// The copy has its own selection.
    MultipleStringSelection(const MultipleStringSelection& other);
    MultipleStringSelection& operator=(const MultipleStringSelection& other);
    ~MultipleStringSelection() override;

    /// Selects a choice, unless it is selected already. Returns false and changes nothing if
    /// \p string is not a choice.
    bool add(const std::string& string);

    /// Does nothing and returns false, intentionally.
    bool tryAdd(const std::string& string) const noexcept;

    /// Selects all choices in their order and nothing else.
    void addAll();

    /// Selects nothing.
    void removeAll() noexcept;

    /// Returns true if \p string is a choice and is selected.
    bool isInSelection(const std::string& string) const noexcept;

    /// Selects the first choice, a second time if it is selected already. Returns false if
    /// there are no choices.
    bool addFirst();

    /// Removes every occurrence of \p string from the selection. Always returns true.
    bool removeFromSelection(const std::string& string);

    /// For each choice in turn: removes every occurrence from the selection or, if it is not
    /// selected, selects it. Selected strings that are not choices stay.
    void invertAll();

    /// As `invertAll`, for one choice. Returns false and changes nothing if \p string is not a
    /// choice.
    bool addOrRemove(const std::string& string);

    /// Compares only the choices, intentionally: a changed selection alone is not a change,
    /// and the code that changes it announces it. Pointers to selections are equal only if they
    /// share one object, as all `StrongPtr`s.
    friend bool operator==(const MultipleStringSelection& a, const MultipleStringSelection& b) noexcept
    {
        return static_cast<const StringList&>(a) == static_cast<const StringList&>(b);
    }

    /// The selected strings; never null, never shared with another object.
    const StrongPtr<StringList> selection;
};

/// Text form of a shared selection: the selected strings in braces, "@", and the
/// choices in braces: `{c}{a}@{a}{b}{c}`. Nothing is escaped. The empty text for null.
template<>
struct FATHOM_API VValueTrait<StrongPtr<MultipleStringSelection, StringList>> {
    using Selection = StrongPtr<MultipleStringSelection, StringList>;

    static std::string Text(const Selection& selection);

    /// Reads the strings in braces, in place: every holder of the same object sees the change.
    /// With an "@", the strings before the first one replace the selection and those after it
    /// the choices; without one, only the selection is replaced. Returns false and changes
    /// nothing for null and for a text with neither "@" nor a string in braces.
    static bool setValueFromText(Selection& selection, const std::string& text);
};

/// Values differ if their choices differ. A copied value has its own choices and selection, so
/// a selection in one pool does not affect other pools.
template<>
struct FATHOM_API VValueOperations<StrongPtr<MultipleStringSelection, StringList>> {
    using Selection = StrongPtr<MultipleStringSelection, StringList>;

    static bool areDifferent(const Selection& a, const Selection& b) noexcept
    {
        return a != b && (!a || !b || !(*a == *b));
    }
    static Selection copyOf(const Selection& selection);
};

} // namespace Orla
