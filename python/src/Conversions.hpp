#pragma once

#include <pybind11/pybind11.h>

#include <fathom/VValue.hpp>

#include <trellis/VValueCreator.hpp>

#include <memory>
#include <optional>
#include <string>
#include <typeinfo>
#include <utility>

namespace Tarn::Python {

namespace py = pybind11;

using Orla::StrongPtr;
using Orla::VValueBase;

/// How values of one C++ type pass to Python and back. Values of types that only client libraries
/// know have no entry; they become `Value` objects, whose attributes are the components.
struct Conversion {
    /// Returns the content of a value. The value has the type of the entry.
    py::object (*toPython)(VValueBase& value);

    /// Returns a value with the content of a Python object; null if the object has another type.
    /// \throw py::value_error if the type fits, but not the content.
    StrongPtr<VValueBase> (*fromPython)(py::handle object);
};

/// Adds the conversion of the values of \p type.
void addConversion(const std::type_info& type, const Conversion& conversion);

/// Returns true if values of \p type become something other than a `Value`.
bool hasConversion(const std::type_info& type);

/// Keeps what a value depends on: the network whose libraries have its code.
using Keeper = std::shared_ptr<const void>;

/// Returns the content of \p value. A value of a type without a conversion becomes a `Value`,
/// which owns \p keeper.
py::object toPython(const StrongPtr<VValueBase>& value, const Keeper& keeper);

/// Returns a value of \p type with the content of \p object.
/// \throw py::type_error naming both types, or py::value_error with the reason.
StrongPtr<VValueBase> fromPython(const std::type_info& type, py::handle object);

/// Returns the creator of the values of a type, by its registered name or its label; null if no loaded
/// library has the type.
StrongPtr<Orla::VValueCreator> findCreator(const std::string& type);

/// A value of a type of a client library: it has a type, a text and components, and can be passed on.
class Value {
public:
    /// Reads a value of a registered type, by its name or its label.
    /// \throw py::value_error if no library has the type, or if the text is refused.
    static Value read(const std::string& type, const std::string& text);

    Value(StrongPtr<VValueBase> content, Keeper keeper) : m_keeper{std::move(keeper)}, m_content{std::move(content)} {}

    const StrongPtr<VValueBase>& content() const noexcept { return m_content; }

    /// Returns the component \p name.
    /// \throw py::attribute_error naming the components if the type has none of that name.
    py::object component(const std::string& name) const;

private:
    Keeper m_keeper; // destroyed last: its libraries have the code of the value
    StrongPtr<VValueBase> m_content;
};

/// Returns the content of a value of type \p T.
template<class T>
T contentOf(VValueBase& value)
{
    T content{};
    if (const auto* const typed = Orla::VTypedValueBase<T>::cast(&value))
        typed->getValue(content);
    return content;
}

/// Adds the conversion of a type by two functions: one makes a Python object, the other reads one
/// and returns nothing for an object of another type.
template<class T, py::object (*ToPython)(const T&), std::optional<T> (*FromPython)(py::handle)>
void addConversion()
{
    addConversion(typeid(T), {[](VValueBase& value) { return ToPython(contentOf<T>(value)); },
                              [](py::handle object) -> StrongPtr<VValueBase> {
                                  const std::optional<T> content = FromPython(object);
                                  if (!content)
                                      return nullptr;
                                  return Loam::makeStrong<Orla::VValue<T>>(*content);
                              }});
}

} // namespace Tarn::Python
