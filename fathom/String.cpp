#include <fathom/String.hpp>

#include <trellis/VTypeLabel.hpp>

namespace Orla {

template class FATHOM_TEMPLATE VTypedValueBase<std::string>;
template class FATHOM_TEMPLATE VValue<std::string>;
template class FATHOM_TEMPLATE TypedValueCreator<std::string>;
template class FATHOM_TEMPLATE VValueParameter<std::string>;
template class FATHOM_TEMPLATE TypedSlot<std::string>;

namespace {

const VTypeLabel stringLabel{typeid(std::string), "text"};

} // namespace

} // namespace Orla
