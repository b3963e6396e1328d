#include <trellis/VPolyOutput.hpp>

#include <limits>

namespace Orla {

class VPolyConnection::Joiner final : public VActionNotifier {
public:
    Joiner(const StrongPtr<VParameter>& output, IsRequester isRequester) : m_output{output}, m_isRequester{isRequester}
    {
    }

    void objectCreated(const StrongPtr<VManagedObject>& managed, const Loam::InterfaceContainer&,
                       const StrongPtr<VObjectCreator>&) override
    {
        if (const StrongPtr<VObject> object{managed}; object && m_isRequester(*object))
            join(*object);
    }

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

private:
    std::string inputName() const
    {
        const StrongPtr<VManagedObject> owner{m_output->owner()};
        return owner ? owner->Name() + "." + m_output->Name() : m_output->Name();
    }

    StrongPtr<VParameter> m_output;
    IsRequester m_isRequester;
    int m_count = 0;
};

VPolyConnection::VPolyConnection(const StrongPtr<VParameter>& output, IsRequester isRequester)
    : m_joiner{new Joiner(output, isRequester)}
{
    struct Existing final : VManagedObjectIterator {
        bool apply(const StrongPtr<VManagedObject>& managed) override
        {
            joiner->objectCreated(managed, {}, nullptr);
            return true;
        }

        StrongPtr<Joiner> joiner;
    } existing;
    existing.joiner = m_joiner;
    VManagedObject::traverse(existing, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    VActionNotifier::add(m_joiner);
}

VPolyConnection::~VPolyConnection()
{
    VActionNotifier::remove(m_joiner);
}

int VPolyConnection::count() const noexcept
{
    return m_joiner->count();
}

} // namespace Orla
