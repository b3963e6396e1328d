#pragma once

#include <trellis/Export.hpp>
#include <trellis/VManagedObjectBase.hpp>
#include <trellis/VSlot.hpp>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace Orla {

class VObject;
class VScope;
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
class TRELLIS_API VSlotContainer : public virtual VManagedObjectBase {
public:
    /// Called once with all inputs, after the object was made and the user's
    /// connections stand.
    using SetupFunction = void (*)(VSlotContainer*, const VSlotSet&);

    /// An input that is declared by its type and a number; which types there are
    /// is the business of the libraries above.
    template<class T, int Number>
    class in;

    VSlotContainer();
    VSlotContainer(const VSlotContainer&) = delete;
    VSlotContainer& operator=(const VSlotContainer&) = delete;

    /// Whoever reads this container's outputs keeps the last values.
    ~VSlotContainer() override;

    /// Adds an input named \p name for \p parameter; \p expertLevel is the number
    /// that user interfaces file it under. Unless \p triggers is set, a change of
    /// the input's value does not make the object due. Null, and a warning, for a
    /// null parameter and for a name that an input has already.
    StrongPtr<VSlot> addParameter(const std::string& name, int expertLevel, const StrongPtr<VParameter>& parameter,
                                  bool triggers);

    /// Takes an input out; false if it is none of this container's.
    bool removeParameter(const StrongPtr<VSlot>& slot);

    /// Offers \p parameter as an output. Its source becomes this container if it
    /// has none. Null, and a warning, for a null parameter and for a name that an
    /// output has already.
    StrongPtr<VSlot> registerOutput(const StrongPtr<VParameter>& parameter, const std::string& name);

    /// Offers an input of this container as an output too: what is connected to
    /// it gets what the input gets, also when the input is connected anew. False
    /// for a slot of another container and for a name that an output has already.
    bool registerOutput(const StrongPtr<VSlot>& input);

    const VSlotSet& inputs() const noexcept { return m_inputs; }
    const VSlotSet& outputs() const noexcept { return m_outputs; }

    /// The input that reads \p parameter now, or null.
    StrongPtr<VSlot> findSlot(const StrongPtr<VParameter>& parameter) const;
    StrongPtr<VSlot> findSlot(const std::string& name) const { return m_inputs.find(name); }
    StrongPtr<VSlot> findOutput(const std::string& name) const { return m_outputs.find(name); }

    /// Visits the inputs with \p expertLevel or a higher one, in the order in
    /// which they were added. Slots may be added and removed meanwhile. False if
    /// a visit ended it.
    bool iterateParameters(VSlotIterator& iterator, int expertLevel);

    /// Connects the input \p slot of this container to \p parameter, or to its
    /// component \p member; an existing connection is replaced. If the types
    /// differ or there is no such component, nothing changes and the result is
    /// false; the reason goes to \p reason or, without one, to
    /// `VActionNotifier::Warning`.
    bool attachParameter(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot,
                         const std::string& member, std::string* reason = nullptr);

    /// Connects the input \p slot to the output \p output of any container; as
    /// `attachParameter`, and follows an output that passes an input on.
    bool attachOutput(const StrongPtr<VSlot>& output, const StrongPtr<VSlot>& slot, const std::string& member,
                      std::string* reason = nullptr);

    /// Gives the slot its own parameter back; false if it is not connected.
    bool detach(const StrongPtr<VSlot>& slot);

    /// A function is held at most once.
    std::set<SetupFunction>& setupFunctions() noexcept { return m_setupFunctions; }

    /// Calls every set-up function.
    void runSetupFunctions();

    /// The processing object that the container is part of, or null.
    VObject* object() const noexcept { return m_object; }

    /// How to call the container in messages.
    std::string describe() const;

    /// The container's place in the order of evaluation: objects are evaluated
    /// by ascending numbers, and whoever reads has a larger number than those
    /// that it reads, loops apart. May be out of date until the next evaluation.
    std::uint32_t evaluationOrder() const noexcept { return m_order; }

private:
    friend class NetworkOrder;
    friend class PoolRoot;
    friend class ValuePool;
    friend class VObject;
    friend class VParameter;
    friend class VScheduler;
    friend class VScope;
    friend class VSlot;

    bool connect(const StrongPtr<VParameter>& parameter, const StrongPtr<VSlot>& slot, const std::string& member,
                 const VSlot* leader, std::string* reason);
    void slotsChanged() noexcept { ++m_layout; }
    void becomeDueEverywhere();

    // What running the container needs stands together.
    VObject* m_object = nullptr;
    std::uint64_t m_cachedPool = 0; // the last pool that was asked for this container's scope
    VScope* m_cachedScope = nullptr;
    std::uint32_t m_order = 0;
    std::uint32_t m_orderAfter = 0; // readers outside a loop come after all of the loop
    std::uint32_t m_layout = 1;     // changes when variables may be missing in a pool
    std::uint32_t m_mark = 0;       // scratch of the ordering
    bool m_isEvaluated = false; // request processing was enabled
    bool m_inLoop = false;
    std::size_t m_pendingPlace = 0; // among those whose order must be worked out, counted from 1

    std::uint64_t m_id;
    VScope* m_scopes = nullptr; // first of this container's scopes in all pools
    VSlotSet m_inputs;
    VSlotSet m_outputs;
    std::set<SetupFunction> m_setupFunctions;
};

} // namespace Orla
