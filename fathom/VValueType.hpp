#pragma once

#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

namespace Orla {

/// Makes a type with a `VValueTrait` available as a value and as an input of saved networks,
/// while the library that contains this line is loaded:
///
///     const Orla::VValueType<Catalogue> catalogueType;
///
/// Several libraries may do so for the same type: one of them serves it, and the others take
/// over when it is unloaded.
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
