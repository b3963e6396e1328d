#pragma once

namespace Orla {

/// For types that serve as inputs but need not convert both ways through text: a
/// specialisation supplies
///
///     static void init(T& value);  // brings a fresh value into its initial state
///     static bool setValueFromText(T& value, const std::string& text);
template<class T>
struct VInputValueTrait;

} // namespace Orla
