#include <trellis/VPolyConnection.hpp>

#include <trellis/detail/NetworkObjects.hpp>
#include <trellis/detail/Wiring.hpp>

#include <trellis/VNetwork.hpp>

#include <limits>
#include <list>
#include <vector>

namespace Orla {

/// One offered output.
class TRELLIS_HIDDEN VPolyConnection::Joiner final : public Loam::ReferenceBase<Joiner> {
public:
    explicit Joiner(const StrongPtr<VParameter>& output) : m_output{output} {}

    void join(VObject& object)
    {
        if (object.findSlot(m_output))
            return;
        // Two owners with the same name may offer outputs with the same name.
        const std::string name = inputName();
        std::string free = name;
        for (int number = 2; object.findSlot(free); ++number)
            free = name + " #" + std::to_string(number);
        if (object.addParameter(free, 0, m_output, true))
            ++m_count;
    }

    int count() const noexcept { return m_count; }

    std::list<StrongPtr<Joiner>>::iterator place; // in the list of the exchange

private:
    std::string inputName() const
    {
        const StrongPtr<VSlotContainer> owner = m_output->owner();
        if (!owner)
            return m_output->Name();
        // The container knows its object even during construction, when a cast does not work
        // yet.
        if (const VObject* object = owner->object())
            return object->Name() + "." + m_output->Name();
        const StrongPtr<VManagedObject> managed{owner};
        return managed ? managed->Name() + "." + m_output->Name() : m_output->Name();
    }

    StrongPtr<VParameter> m_output;
    int m_count = 0;
};

/// Brings the outputs offered in one network to the objects of one class. Keeps lists of both,
/// so a new one takes the same time however many unrelated outputs and objects there are.
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
        made->addExistingObjects(objects);
        objects.addWatcher(made);
        return made;
    }

    void objectAdded(const StrongPtr<VManagedObject>& managed) override
    {
        const StrongPtr<VObject> object{managed};
        if (!object || !m_isRequester(*object))
            return;
        m_requesters.emplace_back(object);
        // A copy of the list, because joining an object may start other joins.
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

    void addExistingObjects(const Detail::NetworkObjects& objects)
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
