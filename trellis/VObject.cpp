#include <trellis/VObject.hpp>

#include <trellis/PoolRoot.hpp>
#include <trellis/VActionNotifier.hpp>
#include <trellis/VObjectCreator.hpp>

#include <loam/Typename.hpp>

#include <cmath>
#include <limits>

namespace Orla {

namespace {

// The output of `object` that has the slot's type and is not one of its inputs
// passed on, if possible.
StrongPtr<VSlot> outputFor(const VSlot& slot, const VObject& object)
{
    StrongPtr<VSlot> passedOn;
    for (const StrongPtr<VSlot>& output : object.outputs()) {
        if (output->type() != slot.type())
            continue;
        if (output->hasFlag(VSlot::Output))
            return output;
        if (!passedOn)
            passedOn = output;
    }
    return passedOn;
}

} // namespace

VOutputIterator::~VOutputIterator() = default;

VObject::VObject(const std::string& name, int level,
                 const StrongPtr<VCreationPreferences, InterfaceBase>& preferences)
    : VManagedObject{name, level}, m_preferences{preferences}
{
    m_object = this;
}

VObject::~VObject()
{
    // The container's own destructor runs last; nobody may ask for an update any more.
    PoolRoot::forgetContainer(*this);
    m_isEvaluated = false;
    m_object = nullptr;
}

void VObject::finishCreation(const StrongPtr<VObject>& object, const Loam::InterfaceContainer& interfaces,
                             const StrongPtr<VObjectCreator>& creator)
{
    if (!object)
        return;
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
    StrongPtr<VObject> object = creator->create(name, 0, preferences);
    finishCreation(object, {}, creator);
    return object;
}

bool VObject::findOutputObjects(const std::type_info& type, VOutputIterator& iterator)
{
    struct Objects final : VManagedObjectIterator {
        Objects(const std::type_info& theType, VOutputIterator& theIterator) : type{theType}, iterator{theIterator} {}

        bool apply(const StrongPtr<VManagedObject>& managed) override
        {
            const StrongPtr<VObject> object{managed};
            if (!object)
                return true;
            const VSlotSet& outputs = object->outputs();
            for (std::size_t i = 0; i < outputs.size(); ++i) {
                const StrongPtr<VSlot> output = outputs[i];
                if (output->type() == type && !iterator.apply(object, type, output))
                    return false;
            }
            return true;
        }

        const std::type_info& type;
        VOutputIterator& iterator;
    } objects{type, iterator};
    return VManagedObject::traverse(objects, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
}

StrongPtr<VObject> VObject::attachNewObject(VObject* object, const StrongPtr<VSlot>& slot, const std::string& typeName,
                                            const StrongPtr<VCreationPreferences>& preferences)
{
    if (!object || !slot || slot->container() != object)
        return nullptr;
    StrongPtr<VObject> provider = createObject(typeName, typeName, preferences);
    if (!provider) {
        VActionNotifier::Warning("No library provides objects of type \"" + typeName + "\"; the input \""
                                 + slot->name() + "\" of " + object->describe() + " keeps its own value");
        return nullptr;
    }
    const StrongPtr<VSlot> output = outputFor(*slot, *provider);
    if (!output) {
        VActionNotifier::Warning(provider->describe() + " has no output of type " + Loam::Typename(slot->type())
                                 + " for the input \"" + slot->name() + "\" of " + object->describe());
        VManagedObject::remove(provider);
        return nullptr;
    }
    object->attachOutput(output, slot, {});
    return provider;
}

VConnectable::VConnectable() = default;
VConnectable::~VConnectable() = default;

bool VConnectable::attachUniqueObject(const StrongPtr<VSlot>& slot, const StrongPtr<VCreationPreferences>& preferences,
                                      bool create)
{
    if (!slot)
        return false;

    struct Best final : VOutputIterator {
        bool apply(const StrongPtr<VObject>& object, const std::type_info&, const StrongPtr<VSlot>& offered) override
        {
            const StrongPtr<VCreationPreferences>& has = object->creationPreferences();
            if (!has || !has->contains("unique") || offered->container() == self)
                return true;
            const double candidate = wanted ? has->weight(*wanted) : has->handicap();
            if (std::isnan(candidate))
                return true;
            if (!output || candidate < weight) {
                output = offered;
                weight = candidate;
            }
            return true;
        }

        const VSlotContainer* self = nullptr;
        StrongPtr<VCreationPreferences> wanted;
        StrongPtr<VSlot> output;
        double weight = 0;
    } best;
    best.self = this;
    best.wanted = preferences;
    VObject::findOutputObjects(slot->type(), best);

    if (!best.output && create) {
        if (const StrongPtr<VObjectCreator> creator = VObjectCreator::findUnique(slot->type())) {
            if (const StrongPtr<VObject> provider = creator->create(creator->typeName(), 0, preferences)) {
                VObject::finishCreation(provider, {}, creator);
                best.output = outputFor(*slot, *provider);
            }
        }
    }
    return best.output && attachOutput(best.output, slot, {});
}

VSkale::VSkale() = default;
VSkale::~VSkale() = default;

} // namespace Orla
