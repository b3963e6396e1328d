#pragma once

#include <fathom/Export.hpp>
#include <fathom/VDescriptionOf.hpp>
#include <fathom/VRunningCell.hpp>
#include <fathom/VValueParameter.hpp>

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VSlotDescription.hpp>
#include <trellis/VSlotContainer.hpp>
#include <trellis/VSlotGlobals.hpp>

#include <loam/SpeakPtr.hpp>

#include <concepts>
#include <cstdio>
#include <string>
#include <utility>

namespace Orla {

/// Declares an input of type \p T of a processing object: a member of the object's class,
/// initialised in its constructor.
///
/// Copies share the framework's slot.
template<class T>
class FATHOM_VISIBLE TypedSlot {
public:
    /// Creates inputs of the type from text.
    class SlotCreator : public TypedSlotCreator {
    public:
        StrongPtr<VSlot> newSlot(VSlotContainer* that, const std::string& name, const std::string& initialText,
                                 bool& ok, const StrongPtr<VCreationPreferences>& preferences,
                                 int expertLevel) const override
        {
            T value{};
            ok = Detail::TraitOf<T>::setValueFromText(value, initialText);
            return TypedSlot(that, name, value, preferences, expertLevel, true).slot();
        }

        /// Registers the type's only creator. Always returns true.
        static bool registerCreator()
        {
            static const StrongPtr<SlotCreator> myLocalStaticCreator = [] {
                StrongPtr<SlotCreator> creator(new SlotCreator);
                TypedSlotCreator::registerTypedSlotCreator(typeid(T), creator);
                return creator;
            }();
            return true;
        }
    };

    /// Adds an input \p name with the value \p initialValue to \p that. User interfaces file
    /// it under the number \p expertLevel. Unless \p triggers is set, a change of its value
    /// does not make the object due.
    ///
    /// The input keeps copies of \p initialValue by `VValueOperations`; later changes of what
    /// that points to do not affect them.
    ///
    /// A null \p that is reported; the input then always reads its initial value.
    TypedSlot(VSlotContainer* that, const std::string& name, const T& initialValue,
              const StrongPtr<VCreationPreferences, InterfaceBase>& preferences, int expertLevel, bool triggers)
        : m_name{name}, m_preferences{preferences}, m_initialValue(Detail::independent(initialValue))
    {
        if (!that)
            VSlotGlobals::assertionFail(nullptr, name, typeid(T));
        const StrongPtr<VParameter> parameter(new VValueParameter<T>(initialValue, name, preferences));
        parameter->setCreator(that);
        m_slot = VSlotGlobals::addParameter(that, name, expertLevel, parameter, triggers);
        if (!m_slot)
            return;
        // The object itself declares this input.
        m_slot->clearFlag(VSlot::AddedLater);
        m_place = m_slot->place();
        if constexpr (requires { requires VValueTrait<T>::sharesState; })
            that->runsInTurn();
    }

    TypedSlot(VSlotContainer* that, const std::string& name, const T& initialValue, int expertLevel)
        : TypedSlot{that, name, initialValue, nullptr, expertLevel, true}
    {
        Loam::SpeakPtr::check(m_slot,
                              "TypedSlot(VObject*that, const string&name, const T&initialValue, int expertLevel");
    }

    /// Adds a described input; see `VDescription`.
    TypedSlot(VSlotContainer* that, const std::string& name, const T& initialValue,
              const VDescriptionOf<T>& description, int expertLevel = 0, bool triggers = true)
        : TypedSlot{that, name, initialValue, VSlotDescription::of(description.parts()), expertLevel, triggers}
    {
        static_assert(Detail::ContentCheck<T>::isDone);
    }

    /// Reports a class that is not derived from `VObject`, in fewer lines than the other
    /// constructors.
    template<class Owner, class... Others>
        requires(!std::convertible_to<Owner*, VSlotContainer*>)
    TypedSlot(Owner*, const std::string&, Others&&...) : TypedSlot{}
    {
        static_assert(!Detail::SlotOwner<Owner>::isValid);
    }

    TypedSlot(const TypedSlot&) = default;
    TypedSlot& operator=(const TypedSlot&) = default;

    ~TypedSlot()
    {
        if (isCreatorRegistered)
            Loam::countUp(TypedSlotCreator::InternalTypeCreatorAccessory);
        else
            std::puts("Typeslot has a problem, its creators were not registered!?");
    }

    /// Returns the framework's slot, or null if the container refused it.
    const StrongPtr<VSlot>& slot() const noexcept { return m_slot; }
    const std::string& name() const noexcept { return m_name; }
    const StrongPtr<VCreationPreferences, InterfaceBase>& preferences() const noexcept { return m_preferences; }
    const T& initialValue() const noexcept { return m_initialValue; }

    /// Returns the parameter that the slot refers to now, or null without a slot.
    StrongPtr<VParameter, ValueNotifierList> parameter() const { return m_slot ? m_slot->parameter() : nullptr; }

    /// Reads the input in \p pool into \p value. Returns false and leaves \p value unchanged
    /// if the pool holds no value. Assigns as `getValue` does: a pointer, or an `Enum`, then
    /// refers to the object that the pool holds.
    bool read(const StrongPtr<ValuePool>& pool, T& value) const
    {
        if (const VRunningCell<T> cell{pool.get(), m_place}) {
            if (const VTypedValueBase<T>* const typed = cell.typed())
                return typed->getValue(value);
        }
        if (!m_slot)
            return false;
        const StrongPtr<VValueBase> found = m_slot->getValueBase(pool);
        const VTypedValueBase<T>* typed = VTypedValueBase<T>::cast(found.get());
        return typed && typed->getValue(value);
    }

    /// Returns the input's value in \p pool, or the initial value if the pool holds no value.
    /// The result is a copy by `VValueOperations`: changing a selection or a box that was
    /// returned does not affect the pool. Pass it to `set` to change the value.
    T value(const StrongPtr<ValuePool>& pool) const
    {
        if (const VRunningCell<T> cell{pool.get(), m_place}) {
            if (const VValue<T>* const plain = cell.plain()) [[likely]]
                return Detail::independent(plain->content());
        }
        T value{};
        if (read(pool, value)) {
            if constexpr (!Detail::copiesPlainly<T>)
                value = VValueOperations<T>::copyOf(value);
            return value;
        }
        return VValueOperations<T>::copyOf(m_initialValue);
    }

    /// Writes a copy of \p value by `VValueOperations` to the input in \p pool, creating the
    /// variable if it is missing, and announces the change. Returns false without a slot or a
    /// pool.
    bool set(const StrongPtr<ValuePool>& pool, const T& value) const
    {
        if (!m_slot)
            return false;
        const StrongPtr<VValueBase> found = m_slot->getLocalValue(pool);
        VTypedValueBase<T>* const typed = VTypedValueBase<T>::cast(found.get());
        if (!typed || !typed->setValue(Detail::independent(value)))
            return false;
        m_slot->parameter()->notifyValueChange(found, pool, m_slot->member());
        return true;
    }

    /// Returns the slot together with the pool to write to.
    std::pair<const TypedSlot, const StrongPtr<ValuePool>> operator()(const StrongPtr<ValuePool>& pool) const
    {
        return {*this, pool};
    }

    /// True once the type's creator is registered, which happens when the library that uses
    /// the type is loaded.
    static bool isCreatorRegistered;

protected:
    /// Declares no input; for derived slots that are assigned to later.
    TypedSlot() : m_initialValue{} {}

private:
    StrongPtr<VSlot> m_slot;
    std::string m_name;
    StrongPtr<VCreationPreferences, InterfaceBase> m_preferences;
    T m_initialValue;
    VSlotPlace m_place;
};

template<class T>
bool TypedSlot<T>::isCreatorRegistered = TypedSlot<T>::SlotCreator::registerCreator();

} // namespace Orla
