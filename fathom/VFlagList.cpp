#include <fathom/VFlagList.hpp>

#include <loam/StringUtil.hpp>

#include <trellis/VTypeLabel.hpp>

#include <cstdio>
#include <utility>

namespace Orla {

FlagList::FlagList() = default;

FlagList::FlagList(std::string_view text, char separator)
{
    addFlagsFromString(text, separator);
}

FlagList::FlagList(const FlagList&) = default;
FlagList::FlagList(FlagList&&) noexcept = default;
FlagList& FlagList::operator=(const FlagList&) = default;
FlagList& FlagList::operator=(FlagList&&) noexcept = default;
FlagList::~FlagList() = default;

bool FlagList::addFlag(std::string_view item)
{
    if (item.empty())
        return false;
    const bool isOn = item.front() != '-';
    if (item.front() == '-' || item.front() == '+')
        item.remove_prefix(1);
    const auto place = m_flags.lower_bound(item);
    if (place != m_flags.end() && place->first == item)
        place->second = isOn;
    else
        m_flags.emplace_hint(place, item, isOn);
    return true;
}

unsigned long long FlagList::addFlagsFromString(std::string_view text, char separator)
{
    unsigned long long pieces = 0;
    Loam::StringUtil::forEachPiece(text, separator, [&](std::string_view piece) {
        ++pieces;
        addFlag(piece);
    });
    return pieces;
}

bool FlagList::removeFlag(std::string_view name)
{
    const auto found = m_flags.find(name);
    if (found == m_flags.end())
        return false;
    m_flags.erase(found);
    return true;
}

bool FlagList::isOn(std::string_view name) const noexcept
{
    bool present = false;
    return (*this)(name, present);
}

bool FlagList::operator()(std::string_view name, bool& present) const noexcept
{
    const auto found = m_flags.find(name);
    present = found != m_flags.end();
    return present ? found->second : m_absentValue;
}

void FlagList::speak() const
{
    for (const auto& [name, isOn] : m_flags)
        std::printf("%s: %s\n", name.c_str(), isOn ? "true" : "false");
}

std::string VValueTrait<FlagList>::Text(const FlagList& flags)
{
    std::size_t length = 0;
    for (const auto& [name, isOn] : flags)
        length += name.size() + 2;
    std::string text;
    text.reserve(length);
    for (const auto& [name, isOn] : flags) {
        text += ' ';
        text += isOn ? '+' : '-';
        text += name;
    }
    return text;
}

bool VValueTrait<FlagList>::setValueFromText(FlagList& flags, const std::string& text)
{
    flags.m_flags = std::move(FlagList(text, ' ').m_flags);
    return true;
}

TypedSlot<bool[]>::TypedSlot() = default;

TypedSlot<bool[]>::TypedSlot(VSlotContainer* that, const std::string& name, const std::string& flagNames,
                             int expertLevel)
    : TypedSlot<FlagList>{that, name, FlagList{flagNames, ' '}, expertLevel}
{
}

VSlotContainer::in<bool[], -32000>::in() = default;

VSlotContainer::in<bool[], -32000>::in(const TypedSlot<bool[]>& slot) : TypedSlot<bool[]>{slot}
{
}

VSlotContainer::in<bool[], -32000>::in(VSlotContainer* that, const std::string& name, const std::string& flagNames,
                                       int expertLevel)
    : TypedSlot<bool[]>{that, name, flagNames, expertLevel}
{
}

template class FATHOM_TEMPLATE VTypedValueBase<FlagList>;
template class FATHOM_TEMPLATE VValue<FlagList>;
template class FATHOM_TEMPLATE TypedValueCreator<FlagList>;
template class FATHOM_TEMPLATE VValueParameter<FlagList>;
template class FATHOM_TEMPLATE TypedSlot<FlagList>;

namespace {

const VTypeLabel flagListLabel{typeid(FlagList), "flags"};

} // namespace

} // namespace Orla
