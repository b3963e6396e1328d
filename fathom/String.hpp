#pragma once

#include <fathom/Export.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

#include <string>

// Strings as values and inputs; Options.cpp instantiates and registers them.
namespace Orla {

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<std::string>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<std::string>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<std::string>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<std::string>;
extern template class FATHOM_EXTERN_TEMPLATE TypedSlot<std::string>;

} // namespace Orla
