#pragma once

#include <fathom/Export.hpp>
#include <fathom/VValue.hpp>

// Numbers as values; Options.cpp instantiates and registers them.
namespace Orla {

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<double>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<double>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<double>;

} // namespace Orla
