#include <trellis/VPolyOutput.hpp>

#include <trellis/detail/NetworkObjects.hpp>
#include <trellis/detail/Wiring.hpp>

#include <trellis/VNetwork.hpp>

#include <limits>
#include <list>
#include <vector>

namespace Orla {

/// One output on offer.
class TRELLIS_HIDDEN VPolyConnection::Joiner final : public Loam::ReferenceBase<Joiner> {
public:
    explicit Joiner(const StrongPtr<VParameter>& output) : m_output{output} {}

    void join(VObject& object)
    {
        if (object.findSlot(m_output))
            return;
        // Owners of the same name may both offer an output of the same name.
        const std::string name = inputName();
        std::string free = name;
        for (int number = 2; object.findSlot(free); ++number)
            free = name + " #" + std::to_string(number);
        if (object.addParameter(free, 0, m_output, true))
            ++m_count;
    }

    int count() const noexcept { return m_count; }

    std::list<StrongPtr<Joiner>>::iterator place; // among those of the exchange

private:
    std::string inputName() const
    {
        const StrongPtr<VSlotContainer> owner = m_output->owner();
        if (!owner)
            return m_output->Name();
        // The container knows its object also while that is under construction, when a
        // cast does not find it yet.
        if (const VObject* object = owner->object())
            return object->Name() + "." + m_output->Name();
        const StrongPtr<VManagedObject> managed{owner};
        return managed ? managed->Name() + "." + m_output->Name() : m_output->Name();
    }

    StrongPtr<VParameter> m_output;
    int m_count = 0;
};

/// Brings the outputs on offer in one network to the objects of one class, so that
/// neither many outputs nor many other objects make a new one slow.
class TRELLIS_HIDDEN VPolyConnection::Exchange final : public Detail::RegistryWatcher {
public:
    static StrongPtr<Exchange> of(Detail::NetworkCore& network, IsRequester isRequester)
    {
        Detail::NetworkObjects& objects = Detail::NetworkObjects::of(network);
        auto& entry = objects.exchange(reinterpret_cast<const void*>(isRequester));
        if (StrongPtr<Exchange> living{entry})
            return living;
        const StrongPtr<Exchange> made(new Exchange(isRequester));
        entry = made;
        made->lookAround(objects);
        objects.addWatcher(made);
        return made;
    }

    void objectAdded(const StrongPtr<VManagedObject>& managed) override
    {
        const StrongPtr<VObject> object{managed};
        if (!object || !m_isRequester(*object))
            return;
        m_requesters.emplace_back(object);
        // An object that is joined may take part in other joins.
        for (const StrongPtr<Joiner>& joiner : std::vector(m_joiners.begin(), m_joiners.end()))
            joiner->join(*object);
    }

    void objectRemoved(const StrongPtr<VManagedObject>& managed) override
    {
        std::erase_if(m_requesters,
                      [&](const WeakPtrImpl<VObject>& entry) { return entry.expired() || entry == managed; });
    }

    void add(const StrongPtr<Joiner>& joiner)
    {
        joiner->place = m_joiners.insert(m_joiners.end(), joiner);
        for (const WeakPtrImpl<VObject>& entry : std::vector(m_requesters)) {
            if (const StrongPtr<VObject> object = entry.lock())
                joiner->join(*object);
        }
    }

    void remove(const StrongPtr<Joiner>& joiner) { m_joiners.erase(joiner->place); }

private:
    explicit Exchange(IsRequester isRequester) : m_isRequester{isRequester} {}

    void lookAround(const Detail::NetworkObjects& objects)
    {
        for (const auto& entry : objects.objects(std::numeric_limits<int>::min(), std::numeric_limits<int>::max()))
            objectAdded(entry.object);
    }

    IsRequester m_isRequester;
    std::vector<WeakPtrImpl<VObject>> m_requesters;
    std::list<StrongPtr<Joiner>> m_joiners;
};

VPolyConnection::VPolyConnection(const StrongPtr<VParameter>& output, IsRequester isRequester)
    : m_joiner{new Joiner(output)}
{
    Detail::NetworkCore* const owners = Detail::Wiring::networkOf(*output);
    Detail::NetworkCore& network = owners ? *owners : Detail::NetworkCore::current();
    const Detail::ChangeScope change{network};
    m_network = StrongPtr<Detail::NetworkCore>(&network);
    m_exchange = Exchange::of(network, isRequester);
    m_exchange->add(m_joiner);
}

VPolyConnection::~VPolyConnection()
{
    const Detail::ChangeScope change{*m_network};
    m_exchange->remove(m_joiner);
    m_exchange.reset();
}

int VPolyConnection::count() const noexcept
{
    return m_joiner->count();
}

} // namespace Orla
