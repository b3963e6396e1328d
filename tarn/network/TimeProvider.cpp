#include <tarn/network/TimeProvider.hpp>

#include <tarn/text/Messages.hpp>

#include <fathom/VTimeSource.hpp>

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
    const Orla::VCreationPreferences wanted{"default", "GlobalTime"};
    double weight = std::numeric_limits<double>::infinity();
    std::size_t bestCount = 0;
    TimeProvider provider;
    Orla::VManagedObject::forEachObject<Orla::VObject>([&](const StrongPtr<Orla::VObject>& object) {
        const auto& preferences = object->creationPreferences();
        if (!preferences || !preferences->contains("GlobalTime"))
            return;
        const StrongPtr<Orla::VSlot> input = freeTimeInput(*object);
        const double candidate = preferences->weight(wanted);
        // Negated to skip NaN, which has no order.
        if (!input || !(candidate <= weight))
            return;
        bestCount = candidate < weight ? 1 : bestCount + 1;
        weight = candidate;
        provider.m_name = object->Name();
        provider.m_input = input;
    });
    if (bestCount > 1)
        Orla::VActionNotifier::Warning(counted(bestCount, "object") + " provide the global time; "
                                       + inQuotes(provider.m_name) + " is stepped");
    return provider;
}

const std::string& TimeProvider::name() const noexcept
{
    const Orla::VSlotContainer* const container = m_input ? m_input->container() : nullptr;
    const Orla::VObject* const object = container ? container->object() : nullptr;
    return object ? object->Name() : m_name;
}

Loam::Result<Orla::VTime> TimeProvider::time(const StrongPtr<Orla::ValuePool>& pool) const
{
    if (const auto* source = dynamic_cast<const Orla::VTimeSource*>(m_input->container()))
        return source->steppedTime(pool);
    Orla::VTime time;
    const StrongPtr<Orla::VValueBase> value = m_input->getLocalValue(pool);
    if (const auto* typed = Orla::VTypedValueBase<Orla::VTime>::cast(value.get()))
        typed->getValue(time);
    return time;
}

void TimeProvider::setStep(const StrongPtr<Orla::ValuePool>& pool, const Orla::VTime& like, std::uint64_t step) const
{
    Orla::VTime time = like;
    time.time = like.Tdiscrete(static_cast<double>(step));
    m_input->set(pool, time);
}

double TimeProvider::stepCount(const Orla::VTime& time) noexcept
{
    return time.maxTsteps() + 1;
}

} // namespace Tarn
