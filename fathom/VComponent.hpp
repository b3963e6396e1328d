#pragma once

#include <fathom/VComputedValue.hpp>
#include <fathom/VMemberValue.hpp>

#include <trellis/VValueComponents.hpp>

#include <type_traits>

namespace Orla {

namespace Detail {

// The class that a component belongs to, and the type of a data member.
template<class>
struct PartOf;

template<class T, class M>
struct PartOf<M T::*> {
    using Owner = T;
    using Member = M;
};

template<class T, class M>
struct PartOf<M (*)(const T&)> {
    using Owner = T;
};

template<class T, class M>
struct PartOf<M (*)(const T&) noexcept> {
    using Owner = T;
};

} // namespace Detail

/// Returns the entry of a component in a table of `VValueComponents`. \p Part is a data member, a
/// member function without arguments, or a function of a value. Components of functions can be
/// read only, and each read calls the function:
///
///     const Orla::VValueComponents parts{typeid(Tempo), {Orla::component<&Tempo::beats>("beats"),
///                                                        Orla::component<&Tempo::text>("text")}};
template<auto Part>
VValueComponents::Component component(const char* name)
{
    using Found = Detail::PartOf<decltype(Part)>;
    if constexpr (std::is_member_object_pointer_v<decltype(Part)>)
        return VMemberValue<typename Found::Owner, typename Found::Member, Part>::component(name);
    else
        return VComputedValue<typename Found::Owner, Part>::component(name);
}

} // namespace Orla
