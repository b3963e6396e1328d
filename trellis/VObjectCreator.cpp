#include <trellis/VObjectCreator.hpp>

#include <trellis/detail/CreatorRegistry.hpp>
#include <trellis/detail/RegistryReport.hpp>

#include <loam/Environment.hpp>
#include <loam/TypeInfo.hpp>
#include <loam/Typename.hpp>

namespace Orla {

namespace {

Detail::CreatorRegistry<VObjectCreator>* objectCreators()
{
    return Detail::creatorRegistry<VObjectCreator>();
}

} // namespace

VObjectCreator::~VObjectCreator()
{
    Loam::releaseTypename(*m_type);
}

std::string VObjectCreator::file() const
{
    return m_file.empty() ? Loam::getLibraryPath(m_type) : m_file;
}

bool VObjectCreator::registerCreator(const WeakPtrImpl<VObjectCreator>& creator, const std::string& name)
{
    const StrongPtr<VObjectCreator> alive = creator.lock();
    auto* const registry = objectCreators();
    if (!alive || !registry)
        return false;
    const VObjectCreator& self = *alive;
    const std::string& file = self.m_file;
    const std::string owner =
        file.empty() ? Detail::ownerOf(self.objectType(), typeid(self)) : "type " + name + " of " + file;
    const std::string library = file.empty() ? Detail::libraryOf(typeid(self)) : file.substr(file.rfind('/') + 1);
    alive->m_name = name;
    // A blank, because keys of C++ types do not begin with one.
    const std::string key = file.empty() ? Loam::typeKey(self.objectType()) : ' ' + file;
    const std::string holder = registry->add(creator, name, key, {owner, library});
    // Whether the rivals matter depends on the names that are used; VObject::createObject reports.
    if (!holder.empty() && registry->find(library + ':' + name) == alive)
        return false;
    return Detail::acceptedOrReported("object type", name, owner, holder);
}

StrongPtr<VObjectCreator> VObjectCreator::find(std::string_view typeName)
{
    const auto* const registry = objectCreators();
    return registry ? registry->find(typeName) : nullptr;
}

StrongPtr<VObjectCreator> VObjectCreator::findUnique(const std::type_info& outputType)
{
    for (const std::string& name : names()) {
        StrongPtr<VObjectCreator> creator = find(name);
        if (creator && creator->m_uniqueOutput && *creator->m_uniqueOutput == outputType)
            return creator;
    }
    return nullptr;
}

std::vector<std::string> VObjectCreator::names()
{
    const auto* const registry = objectCreators();
    return registry ? registry->names() : std::vector<std::string>{};
}

std::vector<std::string> VObjectCreator::libraries(std::string_view typeName)
{
    const auto* const registry = objectCreators();
    return registry ? registry->libraries(typeName) : std::vector<std::string>{};
}

std::vector<StrongPtr<VObjectCreator>> VObjectCreator::creators()
{
    const auto* const registry = objectCreators();
    return registry ? registry->creators() : std::vector<StrongPtr<VObjectCreator>>{};
}

} // namespace Orla
