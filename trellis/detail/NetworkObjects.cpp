#include <trellis/detail/NetworkObjects.hpp>

#include <trellis/VCreationPreferences.hpp>
#include <trellis/VObject.hpp>

#include <loam/ScopeExit.hpp>

#include <algorithm>
#include <limits>
#include <typeinfo>
#include <utility>

namespace Orla::Detail {

namespace {

std::mutex& extensionMutex()
{
    static std::mutex& theMutex = *new std::mutex; // objects may outlive static objects
    return theMutex;
}

} // namespace

RegistryWatcher::~RegistryWatcher() = default;

NetworkObjects& NetworkObjects::of(NetworkCore& network)
{
    const std::lock_guard lock{extensionMutex()};
    if (!network.extension) {
        network.extension = std::make_unique<NetworkObjects>();
        if (&network == &NetworkCore::defaultCore()) {
            // At the end of the program, the remaining objects are destroyed before static
            // objects that are older than the first of them.
            static const Loam::ScopeExit atExit{[] { of(NetworkCore::defaultCore()).close(); }};
        }
    }
    return static_cast<NetworkObjects&>(*network.extension);
}

NetworkObjects* NetworkObjects::find(NetworkCore& network) noexcept
{
    const std::lock_guard lock{extensionMutex()};
    return static_cast<NetworkObjects*>(network.extension.get());
}

const VCreationPreferences* NetworkObjects::preferencesOf(const VManagedObject& object)
{
    const auto* const processing = dynamic_cast<const VObject*>(&object);
    return processing ? processing->creationPreferences().get() : nullptr;
}

bool NetworkObjects::add(const StrongPtr<VManagedObject>& object)
{
    const std::lock_guard lock{m_mutex};
    if (object->m_sequence != 0 || m_isClosed)
        return false;
    Level& level = m_levels[object->m_level];
    const Entry entry{object, m_sequence + 1};
    level.objects.push_back(entry);
    try {
        enterDirectory(entry);
        if (m_names)
            m_names->emplace(std::pair{std::string_view(object->Name()), Position{object->m_level, entry.sequence}},
                             object.get());
    } catch (...) {
        leaveDirectory(*object, {object->m_level, entry.sequence});
        level.objects.pop_back();
        throw;
    }
    ++m_sequence;
    object->m_sequence = entry.sequence;
    object->m_place = static_cast<std::uint32_t>(level.objects.size() - 1);
    ++m_count;
    return true;
}

StrongPtr<VManagedObject> NetworkObjects::remove(VManagedObject& object) noexcept
{
    const std::lock_guard lock{m_mutex};
    if (object.m_sequence == 0)
        return nullptr;
    Level& level = m_levels.find(object.m_level)->second;
    leaveDirectory(object, {object.m_level, object.m_sequence});
    if (m_names)
        m_names->erase({object.Name(), {object.m_level, object.m_sequence}});
    object.m_sequence = 0;
    StrongPtr<VManagedObject> released = std::move(level.objects[object.m_place].object);
    --m_count;
    if (++level.gaps * 2 > level.objects.size()) {
        std::erase_if(level.objects, [](const Entry& entry) { return !entry.object; });
        level.gaps = 0;
        for (std::size_t i = 0; i < level.objects.size(); ++i)
            level.objects[i].object->m_place = static_cast<std::uint32_t>(i);
        if (level.objects.empty())
            m_levels.erase(object.m_level);
    }
    return released;
}

void NetworkObjects::rename(VManagedObject& object, std::string& name) noexcept
{
    const std::lock_guard lock{m_mutex};
    Names::node_type indexed;
    if (m_names && object.m_sequence != 0)
        indexed = m_names->extract({object.Name(), {object.m_level, object.m_sequence}});
    object.m_name.swap(name);
    if (indexed) {
        indexed.key().first = object.Name();
        m_names->insert(std::move(indexed));
    }
}

StrongPtr<VManagedObject> NetworkObjects::find(const std::string& name) const
{
    const std::lock_guard lock{m_mutex};
    if (!m_names) {
        Names names;
        for (const auto& [number, level] : m_levels) {
            for (const Entry& entry : level.objects) {
                if (entry.object)
                    names.emplace(std::pair{std::string_view(entry.object->Name()), Position{number, entry.sequence}},
                                  entry.object.get());
            }
        }
        m_names = std::move(names);
    }
    const auto first = m_names->lower_bound({name, Position{std::numeric_limits<int>::min(), 0}});
    return first != m_names->end() && first->first.first == name ? StrongPtr<VManagedObject>(first->second) : nullptr;
}

std::size_t NetworkObjects::count() const
{
    const std::lock_guard lock{m_mutex};
    return m_count;
}

std::vector<NetworkObjects::Entry> NetworkObjects::objects(int from, int to) const
{
    const std::lock_guard lock{m_mutex};
    std::vector<Entry> entries;
    entries.reserve(m_count);
    for (auto level = m_levels.lower_bound(from); level != m_levels.end() && level->first <= to; ++level) {
        std::ranges::copy_if(level->second.objects, std::back_inserter(entries),
                             [](const Entry& entry) { return bool(entry.object); });
    }
    return entries;
}

bool NetworkObjects::isCurrent(const Entry& entry) const
{
    const std::lock_guard lock{m_mutex};
    return entry.object->m_sequence == entry.sequence;
}

std::vector<StrongPtr<VManagedObject>> NetworkObjects::close()
{
    std::vector<StrongPtr<VManagedObject>> all;
    std::map<int, Level> levels;
    {
        const std::lock_guard lock{m_mutex};
        m_isClosed = true;
        levels.swap(m_levels);
        m_words.clear();
        m_unsorted.clear();
        m_names.reset();
        m_count = 0;
        for (auto& [number, level] : levels) {
            for (Entry& entry : level.objects) {
                if (entry.object)
                    entry.object->m_sequence = 0;
            }
        }
    }
    for (auto& [number, level] : levels) {
        for (Entry& entry : level.objects) {
            if (entry.object)
                all.push_back(std::move(entry.object));
        }
    }
    return all;
}

// The directory

void NetworkObjects::enterDirectory(const Entry& entry) const
{
    const VCreationPreferences* const preferences = preferencesOf(*entry.object);
    if (!preferences)
        return;
    const Position position{entry.object->m_level, entry.sequence};
    preferences->watch();
    if (typeid(*preferences) != typeid(VCreationPreferences)) {
        m_unsorted.emplace(position, entry.object.get());
        return;
    }
    for (const std::string& word : preferences->words())
        m_words[word].emplace(position, entry.object.get());
}

void NetworkObjects::leaveDirectory(const VManagedObject& object, Position position) const noexcept
{
    const VCreationPreferences* const preferences = preferencesOf(object);
    if (!preferences)
        return;
    m_unsorted.erase(position);
    for (const std::string& word : preferences->words()) {
        const auto positions = m_words.find(word);
        if (positions == m_words.end())
            continue;
        positions->second.erase(position);
        if (positions->second.empty())
            m_words.erase(positions);
    }
}

// Words may be added to preferences after their object was announced.
void NetworkObjects::refreshDirectory() const
{
    const std::uint64_t changes = VCreationPreferences::changesOfWatched();
    if (changes == m_seenChanges)
        return;
    m_words.clear();
    m_unsorted.clear();
    for (const auto& [number, level] : m_levels) {
        for (const Entry& entry : level.objects) {
            if (entry.object)
                enterDirectory(entry);
        }
    }
    m_seenChanges = changes;
}

std::vector<NetworkObjects::Entry> NetworkObjects::objectsWithPreference(const std::string& word) const
{
    const std::lock_guard lock{m_mutex};
    refreshDirectory();
    Positions found = m_unsorted;
    if (const auto positions = m_words.find(word); positions != m_words.end())
        found.insert(positions->second.begin(), positions->second.end());
    std::vector<Entry> entries;
    entries.reserve(found.size());
    for (const auto& [position, object] : found)
        entries.push_back({Loam::WeakPtrImpl<VManagedObject>(object).lock(), position.sequence});
    return entries;
}

void NetworkObjects::addWatcher(const StrongPtr<RegistryWatcher>& watcher)
{
    const std::lock_guard lock{m_mutex};
    std::erase_if(m_watchers, [](const auto& each) { return each.expired(); });
    m_watchers.emplace_back(watcher);
}

std::vector<StrongPtr<RegistryWatcher>> NetworkObjects::watchers() const
{
    const std::lock_guard lock{m_mutex};
    std::vector<StrongPtr<RegistryWatcher>> living;
    for (const auto& each : m_watchers) {
        if (StrongPtr<RegistryWatcher> watcher = each.lock())
            living.push_back(std::move(watcher));
    }
    return living;
}

StrongPtr<VManagedObject> NetworkObjects::uniqueObject(const std::type_info& kind) const
{
    const std::lock_guard lock{m_mutex};
    const auto found = m_uniqueObjects.find(kind);
    return found == m_uniqueObjects.end() ? nullptr : found->second.lock();
}

void NetworkObjects::setUniqueObject(const std::type_info& kind, const StrongPtr<VManagedObject>& object)
{
    const std::lock_guard lock{m_mutex};
    m_uniqueObjects[kind] = object;
}

} // namespace Orla::Detail
