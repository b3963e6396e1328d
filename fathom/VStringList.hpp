#pragma once

#include <fathom/Export.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

#include <loam/StringList.hpp>

#include <string>
#include <string_view>

namespace Orla {

using Loam::StringList;

/// Strings to choose from, and the chosen one. The choice is kept as text, so it survives when
/// the list is rebuilt.
///
/// Inputs, outputs and new values keep copies of the selection that they are given, and
/// `TypedSlot::value`, `VOutput::value` and `VSlot::get` return copies. The object itself is
/// shared by copies of a `StrongPtr`, by `VValue::setValue`, `getValue` and `getValueFrom`, by
/// `TypedSlot::read`, and by `updateSelection`, which enters the new list itself.
class FATHOM_API StringSelection : public StringList {
public:
    /// Creates a selection without strings; nothing is chosen.
    StringSelection();

    /// Makes \p only the only string, and chooses it.
    explicit StringSelection(const std::string& only);

    /// Splits \p text at \p separator; \p chosen need not be one of the pieces.
    StringSelection(char separator, const std::string& text, const std::string& chosen);

    /// Copies the strings of \p list, if not null; \p chosen need not be one of them.
    StringSelection(const std::string& chosen, const StrongPtr<StringList>& list);

    StringSelection(const StringSelection&) = default;
    StringSelection& operator=(const StringSelection&) = default;
    ~StringSelection() override;

    /// Chooses \p string. Returns false and changes nothing if the list lacks it.
    bool select(std::string_view string);

    /// Chooses \p string or, if the list lacks it, the first entry. Returns false and changes
    /// nothing for an empty list.
    bool tryselect(std::string_view string);

    /// Chooses the first entry. Returns false and changes nothing for an empty list.
    bool selectFirst();

    /// Compares the strings in order, and the choice.
    bool operator==(const StringSelection& other) const noexcept;

    std::string selection; ///< the chosen string, in the list or not; empty if nothing is chosen
};

/// Text form of a shared selection: the chosen string, "@", and each entry of the
/// list followed by "|": `b@a|b|`. Nothing is escaped. The empty text for null.
template<>
struct FATHOM_API VValueTrait<StrongPtr<StringSelection, StringList>> {
    using Selection = StrongPtr<StringSelection, StringList>;

    static std::string Text(const Selection& selection);

    /// Chooses the first piece of \p text between "@", in place: every holder of the same
    /// selection sees the change. Returns false and keeps the choice if the list lacks it.
    /// Empty pieces do not count, so `@a|b|` asks for "a|b|".
    ///
    /// Only an empty list takes its entries from the second piece, even if the choice fails;
    /// text never changes the entries of another list. Returns false for null.
    static bool setValueFromText(Selection& selection, const std::string& text);
};

/// Selections differ if list or choice differs. A copied value has its own list and choice, so
/// a choice in one pool does not affect other pools.
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

/// Offers \p fresh, a newly made list, in the input \p slot and keeps the user's choice in the
/// pool \p pool if \p fresh contains it. If nothing was chosen so far, chooses the first
/// entry; a choice that \p fresh lacks is replaced by the choice in \p fresh.
///
/// If its list or choice differs, \p fresh itself becomes the pool's value and the change is
/// announced; so each pool needs its own \p fresh. Returns the choice. A null \p fresh is not
/// offered and returns the empty text.
FATHOM_API std::string updateSelection(const TypedSlot<StrongPtr<StringSelection, StringList>>& slot,
                                       const StrongPtr<ValuePool>& pool,
                                       const StrongPtr<StringSelection, StringList>& fresh);

} // namespace Orla
