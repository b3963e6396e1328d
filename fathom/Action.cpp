#include <fathom/Action.hpp>

#include <trellis/VScheduler.hpp>

#include <limits>
#include <vector>

namespace Orla {

VAction::VAction(double theNumber) noexcept : number{theNumber}
{
}

VAction::~VAction() = default;

bool VAction::emitAction(const StrongPtr<ValuePool>& pool, const StrongPtr<VParameter>& parameter)
{
    if (WeakPtrImpl<VParameter>(parameter).expired())
        return false;

    // Collected first: what scheduling sets off must not meet the traversal.
    struct Listeners final : VManagedObjectIterator {
        explicit Listeners(const StrongPtr<VParameter>& theParameter) : parameter{theParameter} {}

        bool apply(const StrongPtr<VManagedObject>& managed) override
        {
            const StrongPtr<VObject> object(managed);
            if (object && object->findSlot(parameter))
                objects.push_back(object);
            return true;
        }

        StrongPtr<VParameter> parameter;
        std::vector<StrongPtr<VObject>> objects;
    } listeners{parameter};

    VManagedObject::traverse(listeners, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    const double precision = number;
    for (const StrongPtr<VObject>& object : listeners.objects)
        VScheduler::schedule(object, precision, pool);
    return true;
}

std::string VValueTrait<StrongPtr<VAction>>::Text(const StrongPtr<VAction>&)
{
    return {};
}

bool VValueTrait<StrongPtr<VAction>>::setValueFromText(StrongPtr<VAction>&, const std::string&)
{
    return false;
}

} // namespace Orla
