#pragma once

#include <fathom/Export.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

#include <loam/StringList.hpp>

#include <string>
#include <string_view>

namespace Orla {

using Loam::StringList;

/// Strings to choose from together with the one that is chosen, by text, so that
/// the choice survives when the list is made anew.
class FATHOM_API StringSelection : public StringList {
public:
    /// Nothing to choose, nothing chosen.
    StringSelection();

    /// \p only to choose, and chosen.
    explicit StringSelection(const std::string& only);

    /// The pieces of \p text between separators; \p chosen need not be one of them.
    StringSelection(char separator, const std::string& text, const std::string& chosen);

    /// The strings of \p list, none for null; \p chosen need not be one of them.
    StringSelection(const std::string& chosen, const StrongPtr<StringList>& list);

    StringSelection(const StringSelection&) = default;
    StringSelection& operator=(const StringSelection&) = default;
    ~StringSelection() override;

    /// Chooses \p string; false, and nothing changed, if the list lacks it.
    bool select(std::string_view string);

    /// Chooses \p string or, if the list lacks it, the first entry; false, and
    /// nothing changed, for an empty list.
    bool tryselect(std::string_view string);

    /// Chooses the first entry; false, and nothing changed, for an empty list.
    bool selectFirst();

    /// Same strings in the same order, and the same one chosen.
    bool operator==(const StringSelection& other) const noexcept;

    std::string selection; ///< the chosen string, in the list or not; empty for none
};

/// Text form of a shared selection: the chosen string, "@", and each entry of the
/// list followed by "|": `b@a|b|`. Nothing is escaped. The empty text for null.
template<>
struct FATHOM_API VValueTrait<StrongPtr<StringSelection, StringList>> {
    using Selection = StrongPtr<StringSelection, StringList>;

    static std::string Text(const Selection& selection);

    /// Chooses the first piece of \p text between "@", in place: every holder of
    /// the same selection sees it. False, and the choice as it was, if the list
    /// lacks it. Pieces that are empty do not count, so `@a|b|` asks for "a|b|".
    ///
    /// Only an empty list takes the entries of the second piece, whatever comes of
    /// the choice: what a program offers, no text changes. Refuses everything for
    /// null.
    static bool setValueFromText(Selection& selection, const std::string& text);
};

/// Selections are different when list or choice is; a copied value has a selection
/// of its own, so that what is chosen in one pool no other pool sees.
template<>
struct FATHOM_API VValueOperations<StrongPtr<StringSelection, StringList>> {
    using Selection = StrongPtr<StringSelection, StringList>;

    static bool areDifferent(const Selection& a, const Selection& b) noexcept;
    static Selection copyOf(const Selection& selection);
};

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<StrongPtr<StringSelection, StringList>>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<StrongPtr<StringSelection, StringList>>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<StrongPtr<StringSelection, StringList>>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<StrongPtr<StringSelection, StringList>>;
extern template class FATHOM_EXTERN_TEMPLATE TypedSlot<StrongPtr<StringSelection, StringList>>;

/// Offers \p fresh, a list just made, in the input \p slot and keeps the user's
/// choice in \p pool if \p fresh has it. Where nothing was chosen so far the first
/// entry is; a choice that \p fresh lacks gives way to the one that \p fresh brings.
///
/// \p fresh itself becomes the pool's value, and the change is announced, if its
/// list or choice is different; so each pool needs a \p fresh of its own. Returns
/// the choice; the empty text for a null \p fresh, which is not offered.
FATHOM_API std::string updateSelection(const TypedSlot<StrongPtr<StringSelection, StringList>>& slot,
                                       const StrongPtr<ValuePool>& pool,
                                       const StrongPtr<StringSelection, StringList>& fresh);

} // namespace Orla
