#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

#include <loam/StringList.hpp>

#include <string>

namespace Orla {

using Loam::StringList;

/// Strings to choose from, the choices, together with any number of them that are
/// selected, in the order in which they were.
class FATHOM_API MultipleStringSelection : public StringList {
public:
    /// No choices, nothing selected.
    MultipleStringSelection();

    /// \p only to choose, and selected.
    explicit MultipleStringSelection(const std::string& only);

    /// The pieces of both texts between separators. What is selected need not be
    /// among the choices.
    MultipleStringSelection(const std::string& selected, const std::string& choices, char separator);

    /// The copy has a selection of its own.
    MultipleStringSelection(const MultipleStringSelection& other);
    MultipleStringSelection& operator=(const MultipleStringSelection& other);
    ~MultipleStringSelection() override;

    /// Selects a choice, unless it is selected already; false, and nothing changed,
    /// for what is no choice.
    bool add(const std::string& string);

    /// Does nothing and returns false, intentionally.
    bool tryAdd(const std::string& string) const noexcept;

    /// Selects all choices in their order and nothing else.
    void addAll();

    /// Selects nothing.
    void removeAll() noexcept;

    /// True for a choice that is selected.
    bool isInSelection(const std::string& string) const noexcept;

    /// Selects the first choice, a second time if it is selected already; false if
    /// there are no choices.
    bool addFirst();

    /// Takes every occurrence out of the selection; true, whether there was one or not.
    bool removeFromSelection(const std::string& string);

    /// For each choice in turn: takes every occurrence out of the selection or, if
    /// there is none, selects it. Selected strings that are no choices stay.
    void invertAll();

    /// As `invertAll` for one choice; false, and nothing changed, for what is no choice.
    bool addOrRemove(const std::string& string);

    /// Compares the choices alone, intentionally: a changed selection is not a
    /// change by itself, and whoever makes one announces it.
    friend bool operator==(const MultipleStringSelection& a, const MultipleStringSelection& b) noexcept
    {
        return static_cast<const StringList&>(a) == static_cast<const StringList&>(b);
    }

    /// The selected strings; never null, and of this object alone.
    const StrongPtr<StringList> selection;
};

/// Compares the choices; nothing is equal to null but null. Whether two pointers
/// share one object, `get()` tells.
inline bool operator==(const StrongPtr<MultipleStringSelection, StringList>& a,
                       const StrongPtr<MultipleStringSelection, StringList>& b) noexcept
{
    return a.get() == b.get() || (a && b && *a == *b);
}

/// Text form of a shared selection: the selected strings in braces, "@", and the
/// choices in braces: `{c}{a}@{a}{b}{c}`. Nothing is escaped. The empty text for null.
template<>
struct FATHOM_API VValueTrait<StrongPtr<MultipleStringSelection, StringList>> {
    using Selection = StrongPtr<MultipleStringSelection, StringList>;

    static std::string Text(const Selection& selection);

    /// Reads the strings in braces, in place: every holder of the same object sees
    /// it. With an "@", those before the first one replace the selection and those
    /// behind it the choices; without, only the selection is replaced. False, and
    /// nothing changed, for null and for a text with neither "@" nor a string in
    /// braces.
    static bool setValueFromText(Selection& selection, const std::string& text);
};

/// Values are different when their choices are; a copied value has choices and a
/// selection of its own, so that what is selected in one pool no other pool sees.
template<>
struct FATHOM_API VValueOperations<StrongPtr<MultipleStringSelection, StringList>> {
    using Selection = StrongPtr<MultipleStringSelection, StringList>;

    static bool areDifferent(const Selection& a, const Selection& b) noexcept { return !(a == b); }
    static Selection copyOf(const Selection& selection);
};

} // namespace Orla
