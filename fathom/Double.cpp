#include <fathom/Double.hpp>

#include <trellis/VTypeLabel.hpp>

namespace Orla {

template class FATHOM_TEMPLATE VTypedValueBase<double>;
template class FATHOM_TEMPLATE VValue<double>;
template class FATHOM_TEMPLATE TypedValueCreator<double>;

namespace {

const VTypeLabel doubleLabel{typeid(double), "number"};

} // namespace

} // namespace Orla
