#include <tarn/libraries/ObjectTracker.hpp>

#include <tarn/text/Messages.hpp>

#include <trellis/VObjectCreator.hpp>
#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueCreator.hpp>

#include <algorithm>

namespace Tarn {

namespace {

using Orla::StrongPtr;

// Returns the first registered creator that is still referenced elsewhere.
template<class Creator>
std::optional<std::string> heldCreator()
{
    for (const std::string& name : Creator::names()) {
        const StrongPtr<Creator> creator = Creator::find(name);
        if (creator && creator.referenceBlock()->strongCount() > 1)
            return "the creator of " + inQuotes(name);
    }
    return std::nullopt;
}

} // namespace

ObjectTracker::~ObjectTracker() = default;

void ObjectTracker::objectCreated(const StrongPtr<Orla::VManagedObject>& object, const Loam::InterfaceContainer&,
                                  const StrongPtr<Orla::VObjectCreator>&)
{
    if (m_objects.size() >= m_nextPruning) {
        std::erase_if(m_objects, [](const auto& entry) { return entry.expired(); });
        m_nextPruning = std::max<std::size_t>(1024, 2 * m_objects.size());
    }
    m_objects.emplace_back(object);
}

void ObjectTracker::countValues(const StrongPtr<Orla::ValuePool>& pool)
{
    for (const auto& entry : m_objects) {
        const StrongPtr<Orla::VObject> object{entry.lock()};
        if (!object)
            continue;
        for (const Orla::VSlotSet* slots : {&object->inputs(), &object->outputs()}) {
            for (const StrongPtr<Orla::VSlot>& slot : *slots) {
                countParameter(slot->ownParameter(), pool);
                if (slot->isConnected())
                    countParameter(slot->parameter(), pool);
            }
        }
    }
}

void ObjectTracker::countParameter(const StrongPtr<Orla::VParameter>& parameter, const StrongPtr<Orla::ValuePool>& pool)
{
    m_parameters.emplace_back(parameter);
    m_values.emplace_back(parameter->DefaultValue());
    if (const StrongPtr<Orla::VValueBase> value = parameter->getValueBase(pool))
        m_values.emplace_back(value);
}

std::optional<std::string> ObjectTracker::survivor() const
{
    for (const auto& entry : m_objects) {
        if (const StrongPtr<Orla::VManagedObject> object = entry.lock())
            return "object " + inQuotes(object->Name());
    }
    for (const auto& entry : m_parameters) {
        if (const StrongPtr<Orla::VParameter> parameter = entry.lock())
            return "a parameter " + inQuotes(parameter->Name());
    }
    for (const auto& entry : m_values) {
        if (const StrongPtr<Orla::VValueBase> value = entry.lock())
            return "a value of type " + Orla::VTypeLabel::of(value->getType());
    }
    if (std::optional<std::string> creator = heldCreator<Orla::VObjectCreator>())
        return creator;
    return heldCreator<Orla::VValueCreator>();
}

void ObjectTracker::unloadUnlessInUse(Libraries& libraries) const
{
    if (const std::optional<std::string> inUse = survivor())
        Orla::VActionNotifier::Warning("The libraries stay in memory because " + *inUse + " is still in use");
    else
        libraries.unload();
}

} // namespace Tarn
