#include <fathom/Char.hpp>

#include <trellis/VTypeLabel.hpp>

namespace Orla {

template class FATHOM_TEMPLATE VTypedValueBase<char>;
template class FATHOM_TEMPLATE VValue<char>;
template class FATHOM_TEMPLATE TypedValueCreator<char>;
template class FATHOM_TEMPLATE VValueParameter<char>;
template class FATHOM_TEMPLATE TypedSlot<char>;

namespace {

const VTypeLabel charLabel{typeid(char), "character"};

} // namespace

} // namespace Orla
