#include <tarn/network/SlotLookup.hpp>

#include <tarn/types/DescriptionCheck.hpp>

#include <algorithm>
#include <utility>

namespace Tarn {

Orla::StrongPtr<Orla::VSlot> findSlotAtStart(const Orla::VSlotSet& slots, std::string_view text, char separator)
{
    Orla::StrongPtr<Orla::VSlot> found;
    for (const Orla::StrongPtr<Orla::VSlot>& slot : slots) {
        const std::string& name = slot->name();
        const bool fits = text.starts_with(name) && (text.size() == name.size() || text[name.size()] == separator);
        if (fits && (!found || name.size() > found->name().size()))
            found = slot;
    }
    return found;
}

std::vector<std::string> namesOf(const Orla::VSlotSet& slots)
{
    std::vector<std::string> names;
    for (const Orla::StrongPtr<Orla::VSlot>& slot : slots)
        names.push_back(slot->name());
    return names;
}

std::vector<std::string> visibleNamesOf(const Orla::VSlotSet& slots)
{
    std::vector<std::string> names;
    for (const Orla::StrongPtr<Orla::VSlot>& slot : slots) {
        if (!isPrivateState(*slot))
            names.push_back(slot->name());
    }
    return names;
}

bool ObjectNames::add(const std::string& name, std::size_t number)
{
    m_longest = std::max(m_longest, name.size());
    return m_numbers.emplace(name, number).second;
}

bool ObjectNames::rename(std::string_view name, std::string newName)
{
    const auto found = m_numbers.find(name);
    if (found == m_numbers.end() || m_numbers.contains(newName))
        return false;
    m_longest = std::max(m_longest, newName.size());
    auto entry = m_numbers.extract(found);
    entry.key() = std::move(newName);
    m_numbers.insert(std::move(entry));
    return true;
}

bool ObjectNames::remove(std::string_view name)
{
    const auto found = m_numbers.find(name);
    if (found == m_numbers.end())
        return false;
    const std::size_t removed = found->second;
    m_numbers.erase(found);
    for (auto& [other, number] : m_numbers)
        number -= number > removed ? 1 : 0;
    return true;
}

std::size_t ObjectNames::find(std::string_view name) const
{
    const auto found = m_numbers.find(name);
    return found == m_numbers.end() ? npos : found->second;
}

std::size_t ObjectNames::findAtStart(std::string_view text, std::string_view& rest) const
{
    for (std::size_t end = m_longest; (end = text.rfind('.', end)) != std::string_view::npos; --end) {
        if (const std::size_t number = find(text.substr(0, end)); number != npos) {
            rest = text.substr(end + 1);
            return number;
        }
        if (end == 0)
            break;
    }
    return npos;
}

std::vector<std::string> ObjectNames::names() const
{
    std::vector<std::string> names;
    for (const auto& [name, number] : m_numbers)
        names.push_back(name);
    return names;
}

} // namespace Tarn
