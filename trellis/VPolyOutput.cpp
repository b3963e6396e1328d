#include <trellis/VPolyOutput.hpp>

#include <functional>
#include <limits>
#include <list>
#include <map>
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
        // The container tells its object also while that is under construction,
        // when a cast does not see it yet.
        if (const VObject* object = owner->object())
            return object->Name() + "." + m_output->Name();
        const StrongPtr<VManagedObject> managed{owner};
        return managed ? managed->Name() + "." + m_output->Name() : m_output->Name();
    }

    StrongPtr<VParameter> m_output;
    int m_count = 0;
};

/// Brings the outputs on offer to the objects of one class, so that neither many
/// outputs nor many other objects make a new one slow.
class TRELLIS_HIDDEN VPolyConnection::Exchange final : public VActionNotifier {
public:
    static StrongPtr<Exchange> of(IsRequester isRequester)
    {
        WeakPtrImpl<Exchange>& entry = all()[isRequester];
        if (StrongPtr<Exchange> living = entry.lock())
            return living;
        const StrongPtr<Exchange> made(new Exchange(isRequester));
        entry = made;
        made->lookAround();
        VActionNotifier::add(made);
        return made;
    }

    ~Exchange() override
    {
        if (!All::isGone)
            all().erase(m_isRequester);
    }

    void objectCreated(const StrongPtr<VManagedObject>& managed, const Loam::InterfaceContainer&,
                       const StrongPtr<VObjectCreator>&) override
    {
        const StrongPtr<VObject> object{managed};
        if (!object || !m_isRequester(*object))
            return;
        m_requesters.emplace_back(object);
        // Who is joined may take part in other joins.
        for (const StrongPtr<Joiner>& joiner : std::vector(m_joiners.begin(), m_joiners.end()))
            joiner->join(*object);
    }

    void objectRemoved(const StrongPtr<VManagedObject>& managed) override
    {
        std::erase_if(m_requesters, [&](const WeakPtrImpl<VObject>& entry) {
            return entry.expired() || entry == managed;
        });
    }

    void add(const StrongPtr<Joiner>& joiner)
    {
        joiner->place = m_joiners.insert(m_joiners.end(), joiner);
        for (const WeakPtrImpl<VObject>& entry : std::vector(m_requesters)) {
            if (const StrongPtr<VObject> object = entry.lock())
                joiner->join(*object);
        }
    }

    void remove(const StrongPtr<Joiner>& joiner)
    {
        m_joiners.erase(joiner->place);
    }

private:
    struct All {
        ~All() { isGone = true; }

        std::map<IsRequester, WeakPtrImpl<Exchange>, std::less<>> exchanges;
        static inline constinit bool isGone = false;
    };

    static std::map<IsRequester, WeakPtrImpl<Exchange>, std::less<>>& all()
    {
        static All theExchanges;
        return theExchanges.exchanges;
    }

    explicit Exchange(IsRequester isRequester) : m_isRequester{isRequester} {}

    void lookAround()
    {
        struct Existing final : VManagedObjectIterator {
            bool apply(const StrongPtr<VManagedObject>& managed) override
            {
                exchange->objectCreated(managed, {}, nullptr);
                return true;
            }

            Exchange* exchange = nullptr;
        } existing;
        existing.exchange = this;
        VManagedObject::traverse(existing, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    }

    IsRequester m_isRequester;
    std::vector<WeakPtrImpl<VObject>> m_requesters;
    std::list<StrongPtr<Joiner>> m_joiners;
};

VPolyConnection::VPolyConnection(const StrongPtr<VParameter>& output, IsRequester isRequester)
    : m_exchange{Exchange::of(isRequester)}, m_joiner{new Joiner(output)}
{
    m_exchange->add(m_joiner);
}

VPolyConnection::~VPolyConnection()
{
    m_exchange->remove(m_joiner);
}

int VPolyConnection::count() const noexcept
{
    return m_joiner->count();
}

} // namespace Orla
