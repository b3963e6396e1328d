#pragma once

#include <trellis/Export.hpp>
#include <trellis/VManagedObjectBase.hpp>
#include <trellis/VSlot.hpp>
#include <trellis/detail/ContainerWiring.hpp>

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
/// Derived virtually by everything that adds slots to an object, so that all
/// parts of an object share one container.
///
/// A container belongs to the network that is current in the thread that creates it.
/// Changes of its slots and connections keep that network to the calling thread;
/// evaluations in other threads wait meanwhile.
class TRELLIS_API VSlotContainer : public virtual VManagedObjectBase {
public:
    /// Called once with all inputs, after the object was created and the user's
    /// connections were made.
    using SetupFunction = void (*)(VSlotContainer*, const VSlotSet&);

    /// An input that is declared by its type and a number; the libraries above define
    /// which types there are.
    template<class T, int Number>
    class in;

    VSlotContainer();
    VSlotContainer(const VSlotContainer&) = delete;
    VSlotContainer& operator=(const VSlotContainer&) = delete;

    /// The readers of this container's outputs keep the last values.
    ~VSlotContainer() override;

    /// Adds an input named \p name for \p parameter; \p expertLevel is the number
    /// that user interfaces file it under. Unless \p triggers is set, a change of
    /// the input's value does not make the object due. Null, and a warning, for a
    /// null parameter and for a name that an input has already.
    StrongPtr<VSlot> addParameter(const std::string& name, int expertLevel, const StrongPtr<VParameter>& parameter,
                                  bool triggers);

    /// Removes an input. Returns false if it does not belong to this container.
    bool removeParameter(const StrongPtr<VSlot>& slot);

    /// Offers \p parameter as an output. Its source becomes this container if it
    /// has none. Null, and a warning, for a null parameter and for a name that an
    /// output has already.
    StrongPtr<VSlot> registerOutput(const StrongPtr<VParameter>& parameter, const std::string& name);

    /// Offers an input of this container as an output too: what is connected to
    /// it reads what the input reads, also when the input is reconnected. Returns false
    /// for a slot of another container and for a name that an output has already.
    bool registerOutput(const StrongPtr<VSlot>& input);

    const VSlotSet& inputs() const noexcept { return m_inputs; }
    const VSlotSet& outputs() const noexcept { return m_outputs; }

    /// The input that reads \p parameter now, or null.
    StrongPtr<VSlot> findSlot(const StrongPtr<VParameter>& parameter) const;
    StrongPtr<VSlot> findSlot(const std::string& name) const { return m_inputs.find(name); }
    StrongPtr<VSlot> findOutput(const std::string& name) const { return m_outputs.find(name); }

    /// Visits the inputs with \p expertLevel or a higher one, in the order in
    /// which they were added. Slots may be added and removed meanwhile. Returns false if
    /// a visit ended it.
    bool iterateParameters(VSlotIterator& iterator, int expertLevel);

    /// As above: calls \p function with each slot, until it returns false if it
    /// returns `bool`.
    template<std::invocable<const StrongPtr<VSlot>&> Function>
    bool forEachInput(Function&& function, int expertLevel);

    /// Connects the input \p slot of this container to \p parameter, or to its
    /// component \p member; an existing connection is replaced. If the parameter is
    /// another container's input, the slot reads what that input reads, also when it is
    /// reconnected. If the types differ, the component does not exist, or the
    /// containers belong to different networks, nothing changes and the result is
    /// false; the reason goes to \p reason or, without one, to
    /// `VActionNotifier::Warning`.
    bool attachParameter(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot,
                         const std::string& member, std::string* reason = nullptr);

    /// Connects the input \p slot to the output \p output of any container; as
    /// `attachParameter`, and follows an output that passes an input on.
    bool attachOutput(const StrongPtr<VSlot>& output, const StrongPtr<VSlot>& slot, const std::string& member,
                      std::string* reason = nullptr);

    /// Gives the slot its own parameter back. Returns false if it is not connected.
    bool detach(const StrongPtr<VSlot>& slot);

    /// A function is held at most once.
    std::set<SetupFunction>& setupFunctions();

    /// Calls every set-up function.
    void runSetupFunctions();

    /// Declares that the object keeps state in members that affects its results: it
    /// then runs in one pool at a time, also where pools are evaluated in several
    /// threads. Call it in the constructor.
    void keepsState();

    /// Declares that the object shares more with others than the values that they read from
    /// each other, such as who holds the pointer. Such objects run one after the other, in
    /// the order of a serial evaluation, also where others run concurrently. Inputs of a
    /// type whose `VValueTrait` has a true member `sharesState` declare it for their object.
    void runsInTurn();

    /// Declares that the object runs although an input comes from an update that failed.
    /// Its update asks `VRequest::hasFailed` which inputs failed.
    void acceptsFailedInputs();

    /// The processing object that the container is part of, or null.
    VObject* object() const noexcept { return m_wiring.object; }

    /// How messages name the container.
    std::string describe() const;

    /// The container's place in the order of evaluation: objects are evaluated
    /// by ascending numbers, and a reader has a larger number than the containers
    /// that it reads, loops apart. May be out of date until the next evaluation.
    std::uint32_t evaluationOrder() const noexcept { return m_wiring.order; }

    /// For the framework itself.
    Detail::ContainerWiring& wiring() noexcept { return m_wiring; }
    const Detail::ContainerWiring& wiring() const noexcept { return m_wiring; }

private:
    friend class Detail::Wiring;

    bool connect(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot, const std::string& member,
                 VSlot* leader, std::string* reason);

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

} // namespace Orla
