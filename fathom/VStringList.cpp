#include <fathom/VStringList.hpp>

#include <loam/StringUtil.hpp>

#include <trellis/VTypeLabel.hpp>

#include <algorithm>
#include <cstdio>

namespace Orla {

namespace {

using Choice = StrongPtr<StringSelection, StringList>;

// Removes the next non-empty piece between "@" from the text and returns it, or the empty text
// if no piece is left.
std::string_view takePiece(std::string_view& text) noexcept
{
    text.remove_prefix(std::min(text.find_first_not_of('@'), text.size()));
    const std::string_view piece = text.substr(0, text.find('@'));
    text.remove_prefix(piece.size());
    return piece;
}

bool haveSameStrings(const StringList& a, const StringList& b) noexcept
{
    return a == b;
}

} // namespace

StringSelection::StringSelection() = default;

StringSelection::StringSelection(const std::string& only) : selection{only}
{
    append(only);
}

StringSelection::StringSelection(char separator, const std::string& text, const std::string& chosen)
    : StringList{text, separator}, selection{chosen}
{
}

StringSelection::StringSelection(const std::string& chosen, const StrongPtr<StringList>& list) : selection{chosen}
{
    if (list)
        StringList::operator=(*list);
}

StringSelection::~StringSelection() = default;

bool StringSelection::select(std::string_view string)
{
    if (!contains(string))
        return false;
    selection = string;
    return true;
}

bool StringSelection::tryselect(std::string_view string)
{
    return select(string) || selectFirst();
}

bool StringSelection::selectFirst()
{
    if (empty())
        return false;
    selection = (*this)[0];
    return true;
}

bool StringSelection::operator==(const StringSelection& other) const noexcept
{
    return selection == other.selection && haveSameStrings(*this, other);
}

std::string VValueTrait<Choice>::Text(const Choice& selection)
{
    if (!selection)
        return {};
    std::size_t length = selection->selection.size() + 1;
    for (const std::string& string : *selection)
        length += string.size() + 1;
    std::string text;
    text.reserve(length);
    text += selection->selection;
    text += '@';
    for (const std::string& string : *selection) {
        text += string;
        text += '|';
    }
    return text;
}

bool VValueTrait<Choice>::setValueFromText(Choice& selection, const std::string& text)
{
    if (!selection)
        return false;
    std::string_view rest = text;
    const std::string_view wanted = takePiece(rest);
    if (wanted.empty())
        return selection->select(text);
    if (selection->empty()) {
        Loam::StringUtil::forEachPiece(takePiece(rest), '|', [&selection](std::string_view string) {
            if (!string.empty())
                selection->append(std::string(string));
        });
    }
    return selection->select(wanted);
}

bool VValueOperations<Choice>::areDifferent(const Choice& a, const Choice& b) noexcept
{
    if (a == b)
        return false;
    return !a || !b || !(*a == *b);
}

Choice VValueOperations<Choice>::copyOf(const Choice& selection)
{
    return selection ? Loam::makeStrong<StringSelection>(*selection) : nullptr;
}

std::string updateSelection(const TypedSlot<Choice>& slot, const StrongPtr<ValuePool>& pool, const Choice& fresh)
{
    if (!fresh)
        return {};
    const StrongPtr<VValueBase> value = slot.slot() ? slot.slot()->getLocalValue(pool) : nullptr;
    VTypedValueBase<Choice>* const typed = VTypedValueBase<Choice>::cast(value.get());
    Choice old;
    if (typed)
        typed->getValue(old);
    // A copy: `fresh` may be the selection that the pool holds.
    const std::string choice = old ? old->selection : std::string();

    if (!fresh->select(choice) && choice.empty() && !fresh->selectFirst())
        std::puts("  .......>  No strings selection found!\n");

    const bool isDifferent = !old || choice != fresh->selection || !haveSameStrings(*old, *fresh);
    if (isDifferent && typed && typed->setValue(fresh))
        slot.parameter()->notifyValueChange(value, pool, slot.slot()->member());
    return fresh->selection;
}

template class FATHOM_TEMPLATE VTypedValueBase<Choice>;
template class FATHOM_TEMPLATE VValue<Choice>;
template class FATHOM_TEMPLATE TypedValueCreator<Choice>;
template class FATHOM_TEMPLATE VValueParameter<Choice>;
template class FATHOM_TEMPLATE TypedSlot<Choice>;

namespace {

const VTypeLabel stringListLabel{typeid(Choice), "choice"};

} // namespace

} // namespace Orla
