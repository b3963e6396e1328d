#include <fathom/Double.hpp>

namespace Orla {

template class FATHOM_TEMPLATE VTypedValueBase<double>;
template class FATHOM_TEMPLATE VValue<double>;
template class FATHOM_TEMPLATE TypedValueCreator<double>;

} // namespace Orla
