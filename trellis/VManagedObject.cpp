#include <trellis/VManagedObject.hpp>

#include <trellis/VActionNotifier.hpp>

#include <map>
#include <utility>
#include <vector>

namespace Orla {

/// The announced objects of the process, by level and then in the order in which
/// they were added. A removed one leaves a gap, so that positions hold still
/// while a traversal walks over them.
class ManagedObjectRegistry {
public:
    static ManagedObjectRegistry& instance()
    {
        static ManagedObjectRegistry theRegistry;
        return theRegistry;
    }

    ManagedObjectRegistry() = default;
    ManagedObjectRegistry(const ManagedObjectRegistry&) = delete;
    ManagedObjectRegistry& operator=(const ManagedObjectRegistry&) = delete;
    ~ManagedObjectRegistry() { isGone = true; }

    // Objects that go at the end of the program may still ask.
    static inline constinit bool isGone = false;

    void add(const StrongPtr<VManagedObject>& object)
    {
        Level& level = levels[object->m_level];
        object->m_place = level.objects.size();
        object->m_registered = true;
        level.objects.push_back(object);
        ++count;
    }

    void remove(VManagedObject& object)
    {
        Level& level = levels[object.m_level];
        object.m_registered = false;
        ++level.gaps;
        --count;
        // Last, because it may be the last pointer.
        const StrongPtr<VManagedObject> released = std::move(level.objects[object.m_place]);
        if (traversals == 0 && level.gaps * 2 > level.objects.size())
            level.closeGaps();
    }

    void closeGaps()
    {
        for (auto& [number, level] : levels) {
            if (level.gaps > 0)
                level.closeGaps();
        }
    }

    struct Level {
        std::vector<StrongPtr<VManagedObject>> objects;
        std::size_t gaps = 0;

        void closeGaps()
        {
            std::erase(objects, nullptr);
            gaps = 0;
            for (std::size_t i = 0; i < objects.size(); ++i)
                objects[i]->m_place = i;
        }
    };

    std::map<int, Level> levels;
    std::size_t count = 0;
    unsigned traversals = 0;
};

namespace {

ManagedObjectRegistry& registry()
{
    return ManagedObjectRegistry::instance();
}

} // namespace

VManagedObjectBase::~VManagedObjectBase() = default;

VManagedObjectIterator::~VManagedObjectIterator() = default;

VManagedObject::VManagedObject(const std::string& name, int level) : m_name{name}, m_level{level}
{
}

VManagedObject::~VManagedObject() = default;

bool VManagedObject::add(const StrongPtr<VManagedObject>& object)
{
    if (!object || object->m_registered || ManagedObjectRegistry::isGone)
        return false;
    registry().add(object);
    return true;
}

bool VManagedObject::remove(const StrongPtr<VManagedObject>& object)
{
    if (!object || !object->m_registered || ManagedObjectRegistry::isGone)
        return false;
    // The pointer given may be the registry's own.
    const StrongPtr<VManagedObject> keepAlive = object;
    registry().remove(*keepAlive);
    VActionNotifier::VObjectRemoval(keepAlive);
    return true;
}

bool VManagedObject::traverse(VManagedObjectIterator& iterator, int from, int to)
{
    if (ManagedObjectRegistry::isGone)
        return true;
    struct Visit {
        Visit() { ++registry().traversals; }
        ~Visit()
        {
            if (--registry().traversals == 0)
                registry().closeGaps();
        }
    } visit;

    // What is added meanwhile stands behind, on whatever level.
    std::vector<std::pair<const ManagedObjectRegistry::Level*, std::size_t>> levels;
    for (auto entry = registry().levels.lower_bound(from);
         entry != registry().levels.end() && entry->first <= to; ++entry)
        levels.emplace_back(&entry->second, entry->second.objects.size());

    for (const auto& [level, count] : levels) {
        for (std::size_t i = 0; i < count; ++i) {
            const StrongPtr<VManagedObject> object = level->objects[i];
            if (object && !iterator.apply(object))
                return false;
        }
    }
    return true;
}

StrongPtr<VManagedObject> VManagedObject::find(const std::string& name)
{
    if (ManagedObjectRegistry::isGone)
        return nullptr;
    for (const auto& [number, level] : registry().levels) {
        for (const StrongPtr<VManagedObject>& object : level.objects) {
            if (object && object->Name() == name)
                return object;
        }
    }
    return nullptr;
}

std::size_t VManagedObject::count()
{
    return ManagedObjectRegistry::isGone ? 0 : registry().count;
}

} // namespace Orla
