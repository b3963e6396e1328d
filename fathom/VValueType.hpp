#pragma once

#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

namespace Orla {

/// Turns a type that has its `VValueTrait` into a value and an input of saved
/// networks, for as long as the library is loaded that has this one line:
///
///     const Orla::VValueType<Catalogue> catalogueType;
///
/// Several libraries may do so for the same type: one of them answers, the
/// others step in when it unloads.
template<class T>
class VValueType {
public:
    VValueType()
    {
        VValue<T>::myTypedValueCreator();
        TypedSlot<T>::SlotCreator::registerCreator();
    }
};

} // namespace Orla
