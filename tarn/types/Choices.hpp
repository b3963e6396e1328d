#pragma once

#include <fathom/VEnum.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VStringList.hpp>

#include <string>
#include <typeinfo>
#include <vector>

// Values that choose from a list of strings.

namespace Tarn {

using OneOf = Orla::StrongPtr<Orla::StringSelection, Loam::StringList>;
using SomeOf = Orla::StrongPtr<Orla::MultipleStringSelection, Loam::StringList>;

/// Returns the content of \p value, or a default one if \p value has another type.
template<class T>
T contentOf(Orla::VValueBase& value)
{
    T content{};
    if (const auto* const typed = Orla::VTypedValueBase<T>::cast(&value))
        typed->getValue(content);
    return content;
}

/// Returns the strings from which \p value chooses; empty for other types.
inline std::vector<std::string> choicesOf(Orla::VValueBase& value)
{
    if (value.getType() == typeid(bool))
        return {"true", "false"};
    if (const auto cases = contentOf<Orla::Enum>(value); cases.selection())
        return {cases.selection()->begin(), cases.selection()->end()};
    if (const auto one = contentOf<OneOf>(value))
        return {one->begin(), one->end()};
    if (const auto some = contentOf<SomeOf>(value))
        return {some->begin(), some->end()};
    return {};
}

} // namespace Tarn
