#include <trellis/VSlotContainer.hpp>

#include <trellis/detail/FrameHooks.hpp>
#include <trellis/detail/Wiring.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VTypeLabel.hpp>
#include <trellis/VValueComponents.hpp>

#include <loam/Typename.hpp>

namespace Orla {

using Loam::Failure;
using Loam::Result;

namespace {

// Fails if an input of type `wanted` cannot read `member` of `parameter`.
Result<void> checkTypes(const VParameter& parameter, const std::string& member, const std::type_info& wanted)
{
    const std::type_info& offered = parameter.valueType();
    const std::type_info* found = VValueComponents::typeOf(offered, member);
    if (!found) {
        std::string known;
        for (const std::string& name : VValueComponents::names(offered))
            known += (known.empty() ? "" : ", ") + name;
        return Failure{"values of type " + VTypeLabel::of(offered) + " have no component \"" + member + "\""
                       + (known.empty() ? "" : " (available: " + known + ")")};
    }
    if (*found != wanted)
        return Failure{"it gives " + VTypeLabel::of(*found) + " where " + VTypeLabel::of(wanted) + " is expected"};
    return {};
}

} // namespace

VSlotIterator::~VSlotIterator() = default;

VSlotContainer::VSlotContainer()
{
    Detail::NetworkCore& network = Detail::NetworkCore::current();
    m_wiring.index = network.add(*this);
    m_wiring.network = &network;
    network.referenceBlock().addStrong();
}

VSlotContainer::~VSlotContainer()
{
    Detail::Wiring::destroy(*this);
    m_wiring.network->referenceBlock().releaseStrong();
}

StrongPtr<VSlot> VSlotContainer::addParameter(const std::string& name, int expertLevel,
                                              const StrongPtr<VParameter>& parameter, bool triggers)
{
    if (!parameter) {
        VActionNotifier::Warning("No parameter was given for the input \"" + name + "\" of " + typeAndName());
        return nullptr;
    }
    if (m_inputs.find(name)) {
        VActionNotifier::Warning("An input \"" + name + "\" was added a second time to " + typeAndName()
                                 + "; the first one is kept");
        return nullptr;
    }
    if (Detail::NetworkCore* const other = Detail::Wiring::networkOf(*parameter); other && other != m_wiring.network) {
        VActionNotifier::Warning("The input \"" + name + "\" of " + typeAndName()
                                 + " was not added: its parameter belongs to another network");
        return nullptr;
    }
    const std::uint8_t flags =
        static_cast<std::uint8_t>(VSlot::AddedLater | (triggers ? std::uint8_t{0} : std::uint8_t{VSlot::Passive}));
    return Detail::Wiring::addInput(*this, name, expertLevel, parameter, flags);
}

bool VSlotContainer::removeParameter(const StrongPtr<VSlot>& slot)
{
    if (!slot || slot->container() != this || m_inputs.find(slot->name()) != slot)
        return false;
    const StrongPtr<VSlot> keepAlive = slot; // the argument may be the set's own pointer
    Detail::Wiring::removeInput(*this, keepAlive);
    return true;
}

StrongPtr<VSlot> VSlotContainer::registerOutput(const StrongPtr<VParameter>& parameter, const std::string& name)
{
    if (!parameter) {
        VActionNotifier::Warning("No parameter was given for the output \"" + name + "\" of " + typeAndName());
        return nullptr;
    }
    if (m_outputs.find(name)) {
        VActionNotifier::Warning("An output \"" + name + "\" was added a second time to " + typeAndName()
                                 + "; the first one is kept");
        return nullptr;
    }
    return Detail::Wiring::addOutput(*this, name, parameter);
}

bool VSlotContainer::registerOutput(const StrongPtr<VSlot>& input)
{
    if (!input || input->container() != this)
        return false;
    const Detail::ChangeScope change{*m_wiring.network};
    return m_outputs.add(input);
}

StrongPtr<VSlot> VSlotContainer::findSlot(const StrongPtr<VParameter>& parameter) const
{
    if (!parameter)
        return nullptr;
    // Search the shorter list: a selector has many inputs, a clock has many readers.
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
                                     const std::string& member)
{
    return warnUnless(tryAttachParameter(parameter, slot, member), slot);
}

Result<void> VSlotContainer::tryAttachParameter(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot,
                                                const std::string& member)
{
    if (parameter && slot && parameter != slot->ownParameter()) {
        // A slot attached to another container's input reads what that input reads.
        if (VSlot* const passing = Detail::Wiring::passingSlot(*parameter))
            return connect(passing->parameter(), slot, VValueComponents::join(passing->member(), member), passing);
    }
    return connect(parameter, slot, member, nullptr);
}

bool VSlotContainer::attachOutput(const StrongPtr<VSlot>& output, const StrongPtr<VSlot>& slot,
                                  const std::string& member)
{
    return warnUnless(tryAttachOutput(output, slot, member), slot);
}

Result<void> VSlotContainer::tryAttachOutput(const StrongPtr<VSlot>& output, const StrongPtr<VSlot>& slot,
                                             const std::string& member)
{
    if (!output)
        return connect(nullptr, slot, member, nullptr);
    // An input that is passed on may read a component itself.
    VSlot* const leader = output->hasFlag(VSlot::Output) ? nullptr : output.get();
    return connect(output->parameter(), slot, VValueComponents::join(output->member(), member), leader);
}

Result<void> VSlotContainer::connect(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot,
                                     const std::string& member, VSlot* leader)
{
    if (!parameter)
        return Failure{"the source is null"};
    if (!slot || slot->container() != this || slot->hasFlag(VSlot::Output))
        return Failure{"the slot is not an input of " + typeAndName()};
    if (Detail::NetworkCore* const other = Detail::Wiring::networkOf(*parameter); other && other != m_wiring.network)
        return Failure{"the two objects belong to different networks"};
    if (m_wiring.network->isClosed())
        return Failure{"the network of " + typeAndName() + " was destroyed"};
    if (Result<void> fits = checkTypes(*parameter, member, slot->type()); !fits)
        return fits;
    const StrongPtr<VParameter> keepAlive = parameter; // the argument may be the slot's own pointer
    Detail::Wiring::connect(*slot, keepAlive, member, leader);
    return {};
}

bool VSlotContainer::warnUnless(const Result<void>& connected, const StrongPtr<VSlot>& slot) const
{
    if (!connected)
        VActionNotifier::Warning((slot ? "Input \"" + slot->name() + "\" of " + typeAndName() : typeAndName())
                                 + " was not connected: " + connected.reason());
    return bool(connected);
}

bool VSlotContainer::detach(const StrongPtr<VSlot>& slot)
{
    if (!slot || slot->container() != this)
        return false;
    const bool wasConnected = slot->isConnected();
    Detail::Wiring::connect(*slot, slot->ownParameter(), {}, nullptr);
    return wasConnected;
}

std::set<VSlotContainer::SetupFunction>& VSlotContainer::setupFunctions()
{
    if (!m_setupFunctions)
        m_setupFunctions = std::make_unique<std::set<SetupFunction>>();
    return *m_setupFunctions;
}

void VSlotContainer::runSetupFunctions()
{
    if (!m_setupFunctions)
        return;
    // A function may add others; only those present at the start are called.
    const std::set<SetupFunction> functions = *m_setupFunctions;
    for (SetupFunction function : functions)
        function(this, m_inputs);
}

void VSlotContainer::keepsState()
{
    runsInOnePool();
    dependsOnEarlierUpdates();
}

void VSlotContainer::runsInOnePool()
{
    const Detail::ChangeScope change{*m_wiring.network};
    m_wiring.keepsState = true;
    Detail::FrameHooks::switchesChanged(*this);
}

void VSlotContainer::runsInTurn()
{
    const Detail::ChangeScope change{*m_wiring.network};
    m_wiring.runsInTurn = true;
    Detail::FrameHooks::switchesChanged(*this);
}

void VSlotContainer::dependsOnEarlierUpdates()
{
    const Detail::ChangeScope change{*m_wiring.network};
    m_wiring.hasHistory = true;
    Detail::FrameHooks::switchesChanged(*this);
}

void VSlotContainer::acceptsFailedInputs()
{
    const Detail::ChangeScope change{*m_wiring.network};
    m_wiring.acceptsFailed = true;
    Detail::FrameHooks::switchesChanged(*this);
}

std::string VSlotContainer::typeName() const
{
    return m_wiring.typeName ? *m_wiring.typeName : Loam::Typename(typeid(*this));
}

void VSlotContainer::setTypeName(const std::string& name)
{
    m_wiring.typeName = std::make_unique<const std::string>(name);
}

std::string VSlotContainer::typeAndName() const
{
    const std::string type = typeName();
    return m_wiring.name ? type + " \"" + *m_wiring.name + "\"" : type;
}

} // namespace Orla
