#pragma once

namespace Orla {

/// For types that serve as inputs but need not convert to and from text. A specialisation
/// supplies
///
///     static void init(T& value);  // initialises a new value
///     static bool setValueFromText(T& value, const std::string& text);
///
/// The specialisation for `Gyre::PhysicalSpace::bivector` has no `init`: a new bivector is zero
/// already.
template<class T>
struct VInputValueTrait;

} // namespace Orla
