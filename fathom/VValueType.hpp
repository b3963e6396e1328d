#pragma once

#include <fathom/TypedSlot.hpp>
#include <fathom/VValue.hpp>

#include <trellis/VTypeLabel.hpp>

#include <string>

namespace Orla {

/// Makes a type with a `VValueTrait` available as a value and as an input of saved networks,
/// while the library that contains this line is loaded:
///
///     const Orla::VValueType<Catalogue> catalogueType{"catalogue"};
///
/// Several libraries may do so for the same type: one of them serves it, and the others take
/// over when it is unloaded.
template<class T>
class VValueType {
public:
    static_assert(Detail::ContentCheck<T>::isDone);

    /// Messages call the type \p label, or its `Loam::Typename` if that is empty, and show
    /// \p example if a text is refused; see VTypeLabel.
    explicit VValueType(const std::string& label = {}, const std::string& example = {})
        : m_label{typeid(T), label, example}
    {
        VValue<T>::myTypedValueCreator();
        TypedSlot<T>::SlotCreator::registerCreator();
    }

private:
    VTypeLabel m_label;
};

} // namespace Orla
