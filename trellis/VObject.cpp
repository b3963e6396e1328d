#include <trellis/VObject.hpp>

#include <trellis/detail/FrameHooks.hpp>
#include <trellis/detail/NetworkObjects.hpp>
#include <trellis/detail/Provision.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VFileObserver.hpp>
#include <trellis/VNetwork.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VTypeLabel.hpp>

#include <filesystem>

namespace Orla {

using Detail::Provision;

VOutputIterator::~VOutputIterator() = default;

VObject::VObject(const std::string& name, int level, const StrongPtr<VCreationPreferences, InterfaceBase>& preferences)
    : VManagedObject{name, level}, m_preferences{preferences}
{
    wiring().object = this;
    wiring().name = &Name();
    wiring().block = &referenceBlock();
}

VObject::~VObject()
{
    // The container's destructor runs last, but no update may start from now on.
    const Detail::ChangeScope change{*wiring().network};
    Detail::FrameHooks::containerGone(*this);
    wiring().isEvaluated = false;
    wiring().object = nullptr;
    wiring().name = nullptr;
}

std::string VObject::inputFile(const std::string& name) const
{
    const VNetwork* const own = network();
    if (!own)
        return name;
    std::string path = own->findFile(name);
    if (VFileObserver* const observer = own->fileObserver())
        observer->reads(*this, name, path);
    return path;
}

std::string VObject::resultFile(const std::string& name, const StrongPtr<ValuePool>& pool) const
{
    std::filesystem::path path = name;
    if (VFrame* const frame = pool ? pool->runningFrame() : nullptr; frame && frame->container() == this)
        frame->writesFile();
    if (pool && !pool->resultTag().empty() && !name.empty()) {
        const std::string extension = path.extension().string();
        path.replace_extension();
        path += '-' + pool->resultTag() + extension;
    }
    const VNetwork* const own = network();
    if (!own)
        return path.string();
    std::string resolved = own->resolve(path.string());
    if (VFileObserver* const observer = own->fileObserver())
        observer->writes(*this, resolved);
    return resolved;
}

void VObject::enableRequestProcessing()
{
    const Detail::ChangeScope change{*wiring().network};
    wiring().isEvaluated = true;
    Detail::FrameHooks::switchesChanged(*this);
}

void VObject::finishCreation(const StrongPtr<VObject>& object, const Loam::InterfaceContainer& interfaces,
                             const StrongPtr<VObjectCreator>& creator)
{
    if (!object)
        return;
    // Set-up functions look for providers in the object's own network.
    const Detail::CurrentScope current{*object->wiring().network};
    const Detail::ChangeScope change{*object->wiring().network};
    object->runSetupFunctions();
    object->enableRequestProcessing();
    VActionNotifier::VObjectCreation(object, interfaces, creator);
}

StrongPtr<VObject> VObject::createObject(const std::string& typeName, const std::string& name,
                                         const StrongPtr<VCreationPreferences>& preferences)
{
    const StrongPtr<VObjectCreator> creator = VObjectCreator::find(typeName);
    if (!creator)
        return nullptr;
    if (const std::vector<std::string> libraries = VObjectCreator::libraries(typeName); libraries.size() > 1)
        VActionNotifier::Warning("Object \"" + name + "\" has the type \"" + typeName + "\" of library \""
                                 + libraries[0] + "\"; library \"" + libraries[1] + "\" has another type of that name");
    StrongPtr<VObject> object = creator->create(name, 0, preferences);
    finishCreation(object, {}, creator);
    return object;
}

bool VObject::findOutputObjects(const std::type_info& type, VOutputIterator& iterator,
                                const std::string& requiredPreference)
{
    const auto visit = [&](const StrongPtr<VObject>& object) {
        const VSlotSet& outputs = object->outputs();
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            const StrongPtr<VSlot> output = outputs[i];
            if (output->type() == type && !iterator.apply(object, type, output))
                return false;
        }
        return true;
    };
    if (requiredPreference.empty())
        return forEachObject<VObject>(visit);
    const auto* const objects = Detail::NetworkObjects::find(Detail::NetworkCore::current());
    if (!objects)
        return true;
    for (const Detail::NetworkObjects::Entry& entry : objects->objectsWithPreference(requiredPreference)) {
        const StrongPtr<VObject> object(entry.object);
        if (object && objects->isCurrent(entry) && object->creationPreferences()->contains(requiredPreference)
            && !visit(object))
            return false;
    }
    return true;
}

bool VObject::isBeingProvided(const VObject& object, const std::string& typeName)
{
    return Provision::isRunning(*object.wiring().network, typeName);
}

StrongPtr<VObject> VObject::attachNewObject(VObject* object, const StrongPtr<VSlot>& slot, const std::string& typeName,
                                            const StrongPtr<VCreationPreferences>& preferences)
{
    if (!object || !slot || slot->container() != object || isBeingProvided(*object, typeName))
        return nullptr;
    Detail::NetworkCore& network = *object->wiring().network;
    const Detail::ChangeScope change{network};
    const Detail::CurrentScope current{network};
    const Provision provision{network, typeName};

    StrongPtr<VObject> provider = createObject(typeName, typeName, preferences);
    if (!provider) {
        VActionNotifier::Warning("No library provides objects of type \"" + typeName + "\"; the input \"" + slot->name()
                                 + "\" of " + object->typeAndName() + " keeps its own value");
        return nullptr;
    }
    const StrongPtr<VSlot> output = Provision::outputFor(*slot, *provider);
    if (!output) {
        VActionNotifier::Warning(provider->typeAndName() + " has no output of type " + VTypeLabel::of(slot->type())
                                 + " for the input \"" + slot->name() + "\" of " + object->typeAndName());
        VManagedObject::remove(provider);
        return nullptr;
    }
    object->attachOutput(output, slot, {});
    return provider;
}

} // namespace Orla
