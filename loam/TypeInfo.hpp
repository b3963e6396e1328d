#pragma once

#include <loam/Export.hpp>

#include <compare>
#include <cstddef>
#include <functional>
#include <string>
#include <typeinfo>

namespace Loam {

/// A type as a value: comparable, ordered, usable as a key.
///
/// Refers to the std::type_info: do not use it, or keep it in a table, after the
/// library that defines the type is unloaded; see typeKey.
class TypeInfo {
public:
    /// Implicit, so a typeid expression can be passed directly:
    /// table.find(typeid(object)).
    TypeInfo(const std::type_info& info) noexcept : m_info{&info} {}

    const std::type_info& info() const noexcept { return *m_info; }

    /// Returns the compiler's name of the type; Typename returns a readable one.
    const char* name() const noexcept { return m_info->name(); }

    friend bool operator==(const TypeInfo& a, const TypeInfo& b) noexcept { return *a.m_info == *b.m_info; }

    /// Orders types as std::type_info::before does. For types local to a source file,
    /// the order differs from run to run.
    friend std::strong_ordering operator<=>(const TypeInfo& a, const TypeInfo& b) noexcept
    {
        if (a == b)
            return std::strong_ordering::equal;
        return a.m_info->before(*b.m_info) ? std::strong_ordering::less : std::strong_ordering::greater;
    }

private:
    const std::type_info* m_info; // a pointer, to keep TypeInfo assignable
};

/// Returns a text that identifies a type in this process: two types have the same
/// key if and only if they are the same type, whichever library each std::type_info
/// comes from. Unlike the std::type_info, a key stays valid after that library is
/// unloaded.
///
/// The key is the compiler's name of the type. Types local to a source file may
/// share that name, so an address is appended to theirs.
LOAM_API std::string typeKey(const std::type_info& type);

} // namespace Loam

template<>
struct std::hash<Loam::TypeInfo> {
    std::size_t operator()(const Loam::TypeInfo& type) const noexcept { return type.info().hash_code(); }
};
