#include <tarn/TimeProvider.hpp>

#include <tarn/Wording.hpp>

#include <trellis/VActionNotifier.hpp>

#include <limits>
#include <typeinfo>

namespace Tarn {

namespace {

using Orla::StrongPtr;

StrongPtr<Orla::VSlot> freeTimeInput(const Orla::VObject& object)
{
    for (const StrongPtr<Orla::VSlot>& input : object.inputs()) {
        if (input->type() == typeid(Orla::VTime) && !input->isConnected())
            return input;
    }
    return nullptr;
}

} // namespace

TimeProvider TimeProvider::find()
{
    struct Best final : Orla::VManagedObjectIterator {
        bool apply(const StrongPtr<Orla::VManagedObject>& managed) override
        {
            const StrongPtr<Orla::VObject> object{managed};
            if (!object || !object->creationPreferences() || !object->creationPreferences()->contains("GlobalTime"))
                return true;
            const StrongPtr<Orla::VSlot> input = freeTimeInput(*object);
            const double candidate = object->creationPreferences()->weight(wanted);
            // Written so that NaN, which has no place in an order, is passed over.
            if (!input || !(candidate <= weight))
                return true;
            equals = candidate < weight ? 1 : equals + 1;
            weight = candidate;
            provider.m_name = object->Name();
            provider.m_input = input;
            return true;
        }

        const Orla::VCreationPreferences wanted{"default", "GlobalTime"};
        double weight = std::numeric_limits<double>::infinity();
        std::size_t equals = 0;
        TimeProvider provider;
    } best;
    Orla::VManagedObject::traverse(best, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    if (best.equals > 1)
        Orla::VActionNotifier::Warning(counted(best.equals, "object") + " provide the global time; "
                                       + inQuotes(best.provider.m_name) + " is stepped");
    return best.provider;
}

Orla::VTime TimeProvider::time(const StrongPtr<Orla::ValuePool>& pool) const
{
    Orla::VTime time;
    const StrongPtr<Orla::VValueBase> value = m_input->getLocalValue(pool);
    if (const auto* typed = Orla::VTypedValueBase<Orla::VTime>::cast(value.get()))
        typed->getValue(time);
    return time;
}

void TimeProvider::setStep(const StrongPtr<Orla::ValuePool>& pool, const Orla::VTime& like, std::uint64_t step) const
{
    const StrongPtr<Orla::VValueBase> value = m_input->getLocalValue(pool);
    auto* const typed = Orla::VTypedValueBase<Orla::VTime>::cast(value.get());
    if (!typed)
        return;
    Orla::VTime time = like;
    time.time = like.Tdiscrete(static_cast<double>(step));
    typed->setValue(time);
    m_input->parameter()->notifyValueChange(value, pool);
}

double TimeProvider::stepCount(const Orla::VTime& time) noexcept
{
    return time.maxTsteps() + 1;
}

} // namespace Tarn
