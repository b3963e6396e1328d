#include <fathom/VEnum.hpp>

#include <loam/Ascii.hpp>
#include <loam/StringUtil.hpp>

#include <trellis/VTypeLabel.hpp>

#include <string_view>

namespace Orla {

namespace {

// Unlike `tolower`, ignores the locale and accepts negative characters.
unsigned numberOf(const StringList& names, std::string_view name) noexcept
{
    const std::size_t found = names.find(name);
    return found == StringList::npos ? Enum::None : static_cast<unsigned>(found);
}

template<class Matches>
unsigned firstOf(const char* const* candidates, unsigned count, Matches&& matches) noexcept
{
    for (unsigned i = 0; i < count; ++i) {
        if (candidates[i] && matches(candidates[i]))
            return i;
    }
    return Enum::None;
}

} // namespace

bool isEqualCaseIndependent(const char* a, const char* b) noexcept
{
    for (; *a && *b; ++a, ++b) {
        if (Loam::toLower(*a) != Loam::toLower(*b))
            return false;
    }
    return true;
}

VEnumSelection::VEnumSelection() = default;

VEnumSelection::VEnumSelection(const StringList& names) : StringList{names}
{
}

VEnumSelection::VEnumSelection(const std::string& text, char separator) : StringList{text, separator}
{
}

VEnumSelection::~VEnumSelection() = default;

bool VEnumSelection::select(unsigned number) noexcept
{
    if (number >= size())
        return false;
    m_selected = number;
    return true;
}

bool VEnumSelection::select(const std::string& name) noexcept
{
    return select(numberOf(*this, name));
}

const std::string& VEnumSelection::operator[](std::size_t number) const noexcept
{
    static const std::string none;
    return number < size() ? StringList::operator[](number) : none;
}

std::string VEnumSelection::toString() const
{
    std::size_t length = selectedName().size();
    for (const std::string& name : *this)
        length += name.size() + 2;
    std::string text;
    text.reserve(length);
    text += selectedName();
    for (const std::string& name : *this) {
        text += '{';
        text += name;
        text += '}';
    }
    return text;
}

bool VEnumSelection::fromString(const std::string& text)
{
    if (text.empty())
        return false;
    const auto brace = text.find('{');
    if (brace == std::string::npos)
        return select(text);
    // The text may be one of the names that are removed.
    const std::string copy = text;
    clear();
    m_selected = 0;
    Loam::StringUtil::forEachPiece(std::string_view(copy).substr(brace + 1), '{',
                                   [this](std::string_view piece) { append(std::string(piece)); });
    return select(copy.substr(0, brace));
}

Enum::Enum(const char* const* names, unsigned count) : m_selection{new VEnumSelection}
{
    for (unsigned i = 0; names && i < count; ++i) {
        if (names[i])
            m_selection->append(names[i]);
    }
}

bool Enum::addCase(const std::string& name)
{
    if (name.empty())
        return false;
    if (!m_selection)
        m_selection = Loam::makeStrong<VEnumSelection>();
    m_selection->append(name);
    return true;
}

bool Enum::addCase(const char* name)
{
    return name && addCase(std::string(name));
}

bool Enum::Equal(const std::string& name) const noexcept
{
    return m_selection && m_selection->selectedName() == name;
}

bool Enum::iEqual(const std::string& name) const noexcept
{
    return m_selection && isEqualCaseIndependent(m_selection->selectedName().c_str(), name.c_str());
}

unsigned Enum::Case(const char* c0, const char* c1, const char* c2, const char* c3, const char* c4, const char* c5,
                    const char* c6, const char* c7, const char* c8, const char* c9, const char* c10) const noexcept
{
    const char* const candidates[] = {c0, c1, c2, c3, c4, c5, c6, c7, c8, c9, c10};
    return (*this)(candidates, 11);
}

unsigned Enum::iCase(const char* c0, const char* c1, const char* c2, const char* c3, const char* c4, const char* c5,
                     const char* c6, const char* c7, const char* c8, const char* c9, const char* c10) const noexcept
{
    // Checked before any candidate: an empty one would match even if nothing is chosen.
    if (!m_selection)
        return None;
    const char* const candidates[] = {c0, c1, c2, c3, c4, c5, c6, c7, c8, c9, c10};
    const char* const chosen = m_selection->selectedName().c_str();
    return firstOf(candidates, 11, [=](const char* name) { return isEqualCaseIndependent(chosen, name); });
}

unsigned Enum::operator()(const char* const* names, unsigned count) const noexcept
{
    if (!m_selection || !names)
        return None;
    const std::string& chosen = m_selection->selectedName();
    return firstOf(names, count, [&chosen](const char* name) { return chosen == name; });
}

unsigned Enum::operator()(const StrongPtr<StringList>& names) const noexcept
{
    return m_selection && names ? numberOf(*names, m_selection->selectedName()) : None;
}

std::string VValueTrait<Enum>::Text(const Enum& value)
{
    return value.selection() ? value.selection()->toString() : std::string();
}

bool VValueTrait<Enum>::setValueFromText(Enum& value, const std::string& text)
{
    if (!value.selection())
        return false;
    return value.select(numberOf(*value.selection(), std::string_view(text).substr(0, text.find('{'))));
}

Enum VValueOperations<Enum>::copyOf(const Enum& value)
{
    return value.selection() ? Enum(Loam::makeStrong<VEnumSelection>(*value.selection())) : Enum();
}

namespace {

const VTypeLabel enumLabel{typeid(Enum), "enumeration"};

} // namespace

} // namespace Orla
