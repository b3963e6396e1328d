#include <trellis/detail/Provision.hpp>

#include <trellis/VObject.hpp>

#include <algorithm>

namespace Orla::Detail {

Provision::Provision(NetworkCore& network, const std::string& typeName) : m_objects{NetworkObjects::of(network)}
{
    m_objects.beingProvided.push_back(typeName);
}

Provision::~Provision()
{
    m_objects.beingProvided.pop_back();
}

bool Provision::isRunning(NetworkCore& network, const std::string& typeName) noexcept
{
    const NetworkObjects* const objects = NetworkObjects::find(network);
    return objects && std::ranges::find(objects->beingProvided, typeName) != objects->beingProvided.end();
}

StrongPtr<VSlot> Provision::outputFor(const VSlot& slot, const VObject& provider)
{
    StrongPtr<VSlot> passedOn;
    for (const StrongPtr<VSlot>& output : provider.outputs()) {
        if (output->type() != slot.type())
            continue;
        if (output->hasFlag(VSlot::Output))
            return output;
        if (!passedOn)
            passedOn = output;
    }
    return passedOn;
}

} // namespace Orla::Detail
