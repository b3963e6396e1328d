#pragma once

#include <trellis/Export.hpp>
#include <trellis/VManagedObjectBase.hpp>
#include <trellis/VSlot.hpp>
#include <trellis/detail/ContainerWiring.hpp>

#include <loam/Result.hpp>

#include <concepts>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace Orla {

class VObject;
class VSlotContainer;

/// Visits slots; see `VSlotContainer::iterateParameters`.
class TRELLIS_API VSlotIterator {
public:
    virtual ~VSlotIterator();

    /// Returns false to end the iteration.
    virtual bool apply(const StrongPtr<VSlot>& slot) = 0;
};

/// Holds named inputs and outputs and connects them.
///
/// Every class that adds slots to an object derives from it virtually, so all parts of an
/// object share one container.
///
/// A container belongs to the network that is current in the thread that creates it. Changing
/// its slots or connections takes exclusive access to that network; evaluations in other
/// threads wait meanwhile.
class TRELLIS_API VSlotContainer : public virtual VManagedObjectBase {
public:
    /// Called once with all inputs, after the object is constructed and the user's connections
    /// are made.
    using SetupFunction = void (*)(VSlotContainer*, const VSlotSet&);

    /// An input declared by its type and a number. Higher-level libraries define the types.
    template<class T, int Number>
    class in;

    VSlotContainer();
    VSlotContainer(const VSlotContainer&) = delete;
    VSlotContainer& operator=(const VSlotContainer&) = delete;

    /// Readers of the outputs keep the last values.
    ~VSlotContainer() override;

    /// Adds an input named \p name for \p parameter. User interfaces file it under
    /// \p expertLevel. Unless \p triggers is set, a change of the input's value does not make
    /// the object due. Warns and returns null if the parameter is null or belongs to another
    /// network, or if an input already has the name.
    StrongPtr<VSlot> addParameter(const std::string& name, int expertLevel, const StrongPtr<VParameter>& parameter,
                                  bool triggers);

    /// Removes an input. Returns false if it does not belong to this container.
    bool removeParameter(const StrongPtr<VSlot>& slot);

    /// Adds \p parameter as an output. Sets the parameter's source to this container if it has
    /// none. Warns and returns null if the parameter is null, or if an output already has the
    /// name.
    StrongPtr<VSlot> registerOutput(const StrongPtr<VParameter>& parameter, const std::string& name);

    /// Offers an input of this container as an output, too. A slot connected to it reads what
    /// the input reads, even after the input is reconnected. Returns false if the slot belongs
    /// to another container, or if an output already has the name.
    bool registerOutput(const StrongPtr<VSlot>& input);

    const VSlotSet& inputs() const noexcept { return m_inputs; }
    const VSlotSet& outputs() const noexcept { return m_outputs; }

    /// Returns the input that currently reads \p parameter, or null.
    StrongPtr<VSlot> findSlot(const StrongPtr<VParameter>& parameter) const;
    StrongPtr<VSlot> findSlot(const std::string& name) const { return m_inputs.find(name); }
    StrongPtr<VSlot> findOutput(const std::string& name) const { return m_outputs.find(name); }

    /// Visits the inputs with at least \p expertLevel in the order in which they were added.
    /// Slots may be added and removed meanwhile. Returns false if a visit ended the iteration.
    bool iterateParameters(VSlotIterator& iterator, int expertLevel);

    /// As above, but calls \p function with each slot. If it returns `bool`, false ends the
    /// iteration.
    template<std::invocable<const StrongPtr<VSlot>&> Function>
    bool forEachInput(Function&& function, int expertLevel);

    /// Connects the input \p slot of this container to \p parameter, or to its component
    /// \p member. Replaces an existing connection. If the parameter is another container's
    /// input, the slot reads what that input reads, even after that input is reconnected.
    /// Returns false, changes nothing and issues a warning with the reason if the types differ,
    /// the component does not exist, or the containers belong to different networks.
    bool attachParameter(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot,
                         const std::string& member);

    /// Connects the input \p slot to \p output of any container, as `attachParameter` does. If
    /// the output passes an input on, the slot follows that input.
    bool attachOutput(const StrongPtr<VSlot>& output, const StrongPtr<VSlot>& slot, const std::string& member);

    /// The same, but return the reason of a failure instead of issuing a warning.
    Loam::Result<void> tryAttachParameter(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot,
                                          const std::string& member);
    Loam::Result<void> tryAttachOutput(const StrongPtr<VSlot>& output, const StrongPtr<VSlot>& slot,
                                       const std::string& member);

    /// Reconnects the slot to its own parameter. Returns false if it was not connected.
    bool detach(const StrongPtr<VSlot>& slot);

    /// Returns the set-up functions, each held at most once.
    std::set<SetupFunction>& setupFunctions();

    /// Calls every set-up function.
    void runSetupFunctions();

    /// Declares that members of the object hold state that affects its results: they depend on
    /// earlier updates in all pools. The object then runs in one pool at a time, even if several
    /// threads evaluate pools. Call it in the constructor.
    void keepsState();

    /// Declares that the object runs in one pool at a time, because its updates use members. Unlike
    /// `keepsState`, this does not declare that results depend on earlier updates. Call it in the
    /// constructor.
    void runsInOnePool();

    /// Returns true if the object runs in one pool at a time.
    bool isInOnePool() const noexcept { return m_wiring.keepsState; }

    /// Returns true if the object called `keepsState` or `dependsOnEarlierUpdates`.
    bool hasHistory() const noexcept { return m_wiring.hasHistory; }

    /// Returns true if `keepsState` was called: a second run of the object may have other results
    /// than the first one, in any pool.
    bool isStateful() const noexcept { return m_wiring.keepsState && m_wiring.hasHistory; }

    /// Declares that the object shares more with other objects than the values that they read
    /// from each other, for example which object has grabbed the pointer. These objects run
    /// one at a time, in serial order, even if others run concurrently. An input of a type
    /// whose `VValueTrait` has a true member `sharesState` declares this for its object.
    void runsInTurn();

    /// Declares that results of the object depend on its earlier updates in the pool, for example
    /// a sum over time. A host then evaluates the steps of the time in order. An update that
    /// reads an output of its own object before writing it need not declare it; see
    /// `VScheduler::history`.
    void dependsOnEarlierUpdates();

    /// Declares that the object runs even if an input comes from a failed update. Its update
    /// calls `VRequest::hasFailed` to find out which inputs failed.
    void acceptsFailedInputs();

    /// Returns the processing object that the container is part of, or null.
    VObject* object() const noexcept { return m_wiring.object; }

    /// Returns the name of the container's type: the name of its class, or that declared with
    /// `setTypeName`.
    std::string typeName() const;

    /// Returns true if `setTypeName` was called.
    bool hasTypeName() const noexcept { return bool(m_wiring.typeName); }

    /// Declares the name of the type, for a class whose objects have several types. Call it in the
    /// constructor.
    void setTypeName(const std::string& name);

    /// Returns the container's type and name, for messages.
    std::string typeAndName() const;

    /// Returns the container's evaluation number. Objects are evaluated in ascending order.
    /// Except in loops, a reader has a larger number than the containers that it reads. May be
    /// out of date until the next evaluation.
    std::uint32_t evaluationOrder() const noexcept { return m_wiring.order; }

    /// For internal use.
    Detail::ContainerWiring& wiring() noexcept { return m_wiring; }
    const Detail::ContainerWiring& wiring() const noexcept { return m_wiring; }

private:
    friend class Detail::Wiring;

    Loam::Result<void> connect(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot,
                               const std::string& member, VSlot* leader);
    bool warnUnless(const Loam::Result<void>& connected, const StrongPtr<VSlot>& slot) const;

    Detail::ContainerWiring m_wiring;
    VSlotSet m_inputs;
    VSlotSet m_outputs;
    std::unique_ptr<std::set<SetupFunction>> m_setupFunctions; // most containers have none
};

template<std::invocable<const StrongPtr<VSlot>&> Function>
bool VSlotContainer::forEachInput(Function&& function, int expertLevel)
{
    struct Visit final : VSlotIterator {
        explicit Visit(Function& theFunction) : function{theFunction} {}

        bool apply(const StrongPtr<VSlot>& slot) override
        {
            if constexpr (std::is_same_v<std::invoke_result_t<Function&, const StrongPtr<VSlot>&>, bool>) {
                return function(slot);
            } else {
                function(slot);
                return true;
            }
        }

        Function& function;
    } visit{function};
    return iterateParameters(visit, expertLevel);
}

namespace Detail {

// Reports, once per class, that it cannot have slots.
template<class T>
struct SlotOwner {
    static constexpr bool isValid = std::is_base_of_v<VSlotContainer, T>;
    static_assert(isValid, "a class with inputs and outputs derives from Orla::VObject");
};

} // namespace Detail

} // namespace Orla
