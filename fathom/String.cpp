#include <fathom/String.hpp>

#include <fathom/VOutput.hpp>

#include <trellis/VTypeLabel.hpp>

namespace Orla {

bool operator<<=(const std::pair<const TypedSlot<std::string>, const StrongPtr<ValuePool>>& in,
                 const std::string& value)
{
    return Detail::assignInputIfDifferent(in.first, in.second, value);
}

template class FATHOM_TEMPLATE VTypedValueBase<std::string>;
template class FATHOM_TEMPLATE VValue<std::string>;
template class FATHOM_TEMPLATE TypedValueCreator<std::string>;
template class FATHOM_TEMPLATE VValueParameter<std::string>;
template class FATHOM_TEMPLATE TypedSlot<std::string>;

namespace {

const VTypeLabel stringLabel{typeid(std::string), "text"};

} // namespace

} // namespace Orla
