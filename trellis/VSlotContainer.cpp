#include <trellis/VSlotContainer.hpp>

#include <trellis/NetworkOrder.hpp>
#include <trellis/PoolRoot.hpp>
#include <trellis/VActionNotifier.hpp>
#include <trellis/VManagedObject.hpp>
#include <trellis/VObject.hpp>
#include <trellis/VValueComponents.hpp>

#include <loam/Typename.hpp>

#include <algorithm>

namespace Orla {

namespace {

std::uint64_t nextId()
{
    static std::uint64_t last = 0;
    return ++last;
}

// Empty if an input of type `wanted` can read `member` of `parameter`.
std::string whyNot(const VParameter& parameter, const std::string& member, const std::type_info& wanted)
{
    const std::type_info& offered = parameter.valueType();
    const std::type_info* found = VValueComponents::typeOf(offered, member);
    if (!found) {
        std::string known;
        for (const std::string& name : VValueComponents::names(offered))
            known += (known.empty() ? "" : ", ") + name;
        return "values of type " + Loam::Typename(offered) + " have no component \"" + member + "\""
               + (known.empty() ? "" : " (but " + known + ")");
    }
    if (*found != wanted)
        return "it gives " + Loam::Typename(*found) + " where " + Loam::Typename(wanted) + " is expected";
    return {};
}

} // namespace

VSlotIterator::~VSlotIterator() = default;

VSlotContainer::VSlotContainer() : m_id{nextId()}
{
}

VSlotContainer::~VSlotContainer()
{
    PoolRoot::forgetContainer(*this);
    for (const VSlotSet* slots : {&m_inputs, &m_outputs}) {
        for (const StrongPtr<VSlot>& slot : *slots) {
            slot->leave();
            slot->m_container = nullptr;
        }
    }
    // Readers go on with the parameters of the outputs, which now have no source.
    NetworkOrder::forget(*this);
}

StrongPtr<VSlot> VSlotContainer::addParameter(const std::string& name, int expertLevel,
                                              const StrongPtr<VParameter>& parameter, bool triggers)
{
    if (!parameter) {
        VActionNotifier::Warning("No parameter was given for the input \"" + name + "\" of " + describe());
        return nullptr;
    }
    if (m_inputs.find(name)) {
        VActionNotifier::Warning("An input \"" + name + "\" was added a second time to " + describe()
                                 + "; the first one stays");
        return nullptr;
    }
    const std::uint8_t flags =
        static_cast<std::uint8_t>(VSlot::AddedLater | (triggers ? std::uint8_t{0} : std::uint8_t{VSlot::Passive}));
    StrongPtr<VSlot> slot(new VSlot(*this, name, expertLevel, parameter, flags));
    m_inputs.add(slot);
    slot->join();
    slotsChanged();
    NetworkOrder::inputChanged(*this, slot.get());
    becomeDueEverywhere();
    return slot;
}

bool VSlotContainer::removeParameter(const StrongPtr<VSlot>& slot)
{
    if (!slot || !m_inputs.remove(*slot))
        return false;
    m_outputs.remove(*slot);
    slot->leave();
    slot->m_container = nullptr;
    slotsChanged();
    NetworkOrder::inputChanged(*this, nullptr);
    becomeDueEverywhere();
    return true;
}

StrongPtr<VSlot> VSlotContainer::registerOutput(const StrongPtr<VParameter>& parameter, const std::string& name)
{
    if (!parameter) {
        VActionNotifier::Warning("No parameter was given for the output \"" + name + "\" of " + describe());
        return nullptr;
    }
    if (m_outputs.find(name)) {
        VActionNotifier::Warning("An output \"" + name + "\" was added a second time to " + describe()
                                 + "; the first one stays");
        return nullptr;
    }
    if (parameter->source().expired()) {
        parameter->setSource(this);
        // Who reads it already reads this container from now on.
        for (VSlot* reader : std::vector<VSlot*>(parameter->readers())) {
            reader->leave();
            reader->join();
            NetworkOrder::inputChanged(*reader->container(), reader);
        }
    }
    StrongPtr<VSlot> slot(new VSlot(*this, name, 0, parameter, VSlot::Output));
    m_outputs.add(slot);
    slotsChanged();
    return slot;
}

bool VSlotContainer::registerOutput(const StrongPtr<VSlot>& input)
{
    return input && input->container() == this && m_outputs.add(input);
}

StrongPtr<VSlot> VSlotContainer::findSlot(const StrongPtr<VParameter>& parameter) const
{
    if (!parameter)
        return nullptr;
    // Either side may be the long one: a selector with many inputs, a clock with
    // many readers.
    if (parameter->readers().size() < m_inputs.size()) {
        for (VSlot* reader : parameter->readers()) {
            if (reader->container() == this)
                return WeakPtrImpl<VSlot>(reader).lock();
        }
        return nullptr;
    }
    for (const StrongPtr<VSlot>& slot : m_inputs) {
        if (slot->parameter() == parameter)
            return slot;
    }
    return nullptr;
}

bool VSlotContainer::iterateParameters(VSlotIterator& iterator, int expertLevel)
{
    const std::vector<StrongPtr<VSlot>> slots(m_inputs.begin(), m_inputs.end());
    for (const StrongPtr<VSlot>& slot : slots) {
        if (slot->container() == this && slot->expertLevel() >= expertLevel && !iterator.apply(slot))
            return false;
    }
    return true;
}

bool VSlotContainer::attachParameter(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot,
                                     const std::string& member, std::string* reason)
{
    return connect(parameter, slot, member, nullptr, reason);
}

bool VSlotContainer::attachOutput(const StrongPtr<VSlot>& output, const StrongPtr<VSlot>& slot,
                                  const std::string& member, std::string* reason)
{
    if (!output)
        return connect(nullptr, slot, member, nullptr, reason);
    // An input that is passed on may read a component itself.
    const VSlot* leader = output->hasFlag(VSlot::Output) ? nullptr : output.get();
    if (!connect(output->parameter(), slot, VValueComponents::join(output->member(), member), leader, reason))
        return false;
    if (leader && std::ranges::find(output->m_followers, WeakPtrImpl<VSlot>(slot)) == output->m_followers.end())
        output->m_followers.emplace_back(slot);
    return true;
}

bool VSlotContainer::connect(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot,
                             const std::string& member, const VSlot* leader, std::string* reason)
{
    std::string why;
    if (!parameter)
        why = "there is no parameter to connect to";
    else if (!slot || slot->container() != this || slot->hasFlag(VSlot::Output))
        why = "the slot is no input of " + describe();
    else
        why = whyNot(*parameter, member, slot->type());
    if (!why.empty()) {
        if (reason)
            *reason = why;
        else
            VActionNotifier::Warning((slot ? "Input \"" + slot->name() + "\" of " + describe() : describe())
                                     + " was not connected: " + why);
        return false;
    }
    slot->refersTo(parameter, member, leader);
    return true;
}

bool VSlotContainer::detach(const StrongPtr<VSlot>& slot)
{
    if (!slot || slot->container() != this)
        return false;
    const bool wasConnected = slot->isConnected();
    slot->refersTo(slot->ownParameter(), {}, nullptr);
    return wasConnected;
}

void VSlotContainer::runSetupFunctions()
{
    // A function may add others; each that was there at the start is called.
    const std::set<SetupFunction> functions = m_setupFunctions;
    for (SetupFunction function : functions)
        function(this, m_inputs);
}

std::string VSlotContainer::describe() const
{
    const auto* object = dynamic_cast<const VManagedObject*>(this);
    const std::string type = Loam::Typename(typeid(*this));
    return object ? type + " \"" + object->Name() + "\"" : type;
}

void VSlotContainer::becomeDueEverywhere()
{
    for (VScope* scope = m_scopes; scope; scope = scope->nextOfContainer())
        scope->makeDue(VScheduler::Observer::Cause::Connected);
}

} // namespace Orla
