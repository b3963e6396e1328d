#include <fathom/VMultipleStringList.hpp>

#include <loam/StringUtil.hpp>

#include <trellis/VTypeLabel.hpp>

#include <string_view>

namespace Orla {

namespace {

using Selection = StrongPtr<MultipleStringSelection, StringList>;

std::size_t lengthOf(const StringList& strings) noexcept
{
    std::size_t length = 0;
    for (const std::string& string : strings)
        length += string.size() + 2;
    return length;
}

void write(std::string& text, const StringList& strings)
{
    for (const std::string& string : strings) {
        text += '{';
        text += string;
        text += '}';
    }
}

// Returns the text after the first "{"; empty without a "{".
std::string_view inBraces(std::string_view text) noexcept
{
    const auto first = text.find('{');
    return first == std::string_view::npos ? std::string_view() : text.substr(first + 1);
}

void read(StringList& strings, std::string_view text)
{
    strings.clear();
    Loam::StringUtil::forEachPiece(inBraces(text), '{', [&strings](std::string_view piece) {
        // The last brace closes the string, which may contain braces itself.
        strings.append(std::string(piece.substr(0, piece.rfind('}'))));
    });
}

} // namespace

MultipleStringSelection::MultipleStringSelection() : selection{new StringList}
{
}

MultipleStringSelection::MultipleStringSelection(const std::string& only) : selection{new StringList}
{
    append(only);
    selection->append(only);
}

MultipleStringSelection::MultipleStringSelection(const std::string& selected, const std::string& choices,
                                                 char separator)
    : StringList{choices, separator}, selection{new StringList(selected, separator)}
{
}

MultipleStringSelection::MultipleStringSelection(const MultipleStringSelection& other)
    : StringList{other}, selection{new StringList(*other.selection)}
{
}

MultipleStringSelection& MultipleStringSelection::operator=(const MultipleStringSelection& other)
{
    StringList::operator=(other);
    *selection = *other.selection;
    return *this;
}

MultipleStringSelection::~MultipleStringSelection() = default;

bool MultipleStringSelection::add(const std::string& string)
{
    if (!contains(string))
        return false;
    if (!selection->contains(string))
        selection->append(string);
    return true;
}

bool MultipleStringSelection::tryAdd(const std::string&) const noexcept
{
    return false;
}

void MultipleStringSelection::addAll()
{
    *selection = *this;
}

void MultipleStringSelection::removeAll() noexcept
{
    selection->clear();
}

bool MultipleStringSelection::isInSelection(const std::string& string) const noexcept
{
    return selection->contains(string) && contains(string);
}

bool MultipleStringSelection::addFirst()
{
    if (empty())
        return false;
    selection->append((*this)[0]);
    return true;
}

bool MultipleStringSelection::removeFromSelection(const std::string& string)
{
    selection->remove(string);
    return true;
}

void MultipleStringSelection::invertAll()
{
    for (const std::string& choice : *this) {
        if (selection->remove(choice) == 0)
            selection->append(choice);
    }
}

bool MultipleStringSelection::addOrRemove(const std::string& string)
{
    if (!contains(string))
        return false;
    if (selection->remove(string) == 0)
        selection->append(string);
    return true;
}

std::string VValueTrait<Selection>::Text(const Selection& selection)
{
    if (!selection)
        return {};
    std::string text;
    text.reserve(lengthOf(*selection->selection) + 1 + lengthOf(*selection));
    write(text, *selection->selection);
    text += '@';
    write(text, *selection);
    return text;
}

bool VValueTrait<Selection>::setValueFromText(Selection& selection, const std::string& text)
{
    if (!selection)
        return false;
    // A copy: the text may be one of the strings that are replaced.
    const std::string copy = text;
    const std::string_view whole = copy;
    const auto at = whole.find('@');
    const std::string_view selected = whole.substr(0, at);
    if (at == std::string_view::npos && inBraces(selected).empty())
        return false;
    read(*selection->selection, selected);
    if (at != std::string_view::npos)
        read(*selection, whole.substr(at + 1));
    return true;
}

Selection VValueOperations<Selection>::copyOf(const Selection& selection)
{
    return selection ? Loam::makeStrong<MultipleStringSelection>(*selection) : nullptr;
}

namespace {

const VTypeLabel multipleStringListLabel{typeid(Selection), "multiple choice"};

} // namespace

} // namespace Orla
