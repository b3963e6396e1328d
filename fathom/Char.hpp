#pragma once

#include <fathom/Export.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

// Single characters as values and inputs; Options.cpp instantiates and registers them.
namespace Orla {

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<char>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<char>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<char>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<char>;
extern template class FATHOM_EXTERN_TEMPLATE TypedSlot<char>;

} // namespace Orla
