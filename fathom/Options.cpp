#include <fathom/Char.hpp>
#include <fathom/Double.hpp>
#include <fathom/String.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VTypeLabel.hpp>

// Instantiates and registers the plain types, whose text forms are in trellis.
namespace Orla {

template class FATHOM_TEMPLATE VTypedValueBase<double>;
template class FATHOM_TEMPLATE VValue<double>;
template class FATHOM_TEMPLATE TypedValueCreator<double>;

template class FATHOM_TEMPLATE VTypedValueBase<char>;
template class FATHOM_TEMPLATE VValue<char>;
template class FATHOM_TEMPLATE TypedValueCreator<char>;
template class FATHOM_TEMPLATE VValueParameter<char>;
template class FATHOM_TEMPLATE TypedSlot<char>;

template class FATHOM_TEMPLATE VTypedValueBase<std::string>;
template class FATHOM_TEMPLATE VValue<std::string>;
template class FATHOM_TEMPLATE TypedValueCreator<std::string>;
template class FATHOM_TEMPLATE VValueParameter<std::string>;
template class FATHOM_TEMPLATE TypedSlot<std::string>;

bool operator<<=(const std::pair<const TypedSlot<std::string>, const StrongPtr<ValuePool>>& in,
                 const std::string& value)
{
    return Detail::assignInputIfDifferent(in.first, in.second, value);
}

namespace {

const VTypeLabel doubleLabel{typeid(double), "number"};
const VTypeLabel charLabel{typeid(char), "character"};
const VTypeLabel stringLabel{typeid(std::string), "text"};

} // namespace

} // namespace Orla
