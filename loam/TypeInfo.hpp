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
/// Refers to the std::type_info, so it must not be used, nor stay in a table,
/// once the library that the type comes from is unloaded; see typeKey.
class TypeInfo {
public:
    /// Implicit, because a typeid expression is meant wherever a TypeInfo is:
    /// table.find(typeid(object)).
    TypeInfo(const std::type_info& info) noexcept : m_info{&info} {}

    const std::type_info& info() const noexcept { return *m_info; }

    /// The compiler's name of the type; Typename gives one for people.
    const char* name() const noexcept { return m_info->name(); }

    friend bool operator==(const TypeInfo& a, const TypeInfo& b) noexcept { return *a.m_info == *b.m_info; }

    /// The order of std::type_info::before. It differs from run to run for
    /// types that are local to a source file.
    friend std::strong_ordering operator<=>(const TypeInfo& a, const TypeInfo& b) noexcept
    {
        if (a == b)
            return std::strong_ordering::equal;
        return a.m_info->before(*b.m_info) ? std::strong_ordering::less : std::strong_ordering::greater;
    }

private:
    const std::type_info* m_info; // a pointer, so that TypeInfos can be assigned
};

/// A text that identifies a type in this process: two types have the same key
/// if and only if they are one type, whichever library each std::type_info comes
/// from. Unlike the std::type_info, a key stays valid when that library is
/// unloaded.
///
/// It is the compiler's name of the type; types that are local to a source file
/// may share that name, so theirs is followed by an address.
LOAM_API std::string typeKey(const std::type_info& type);

} // namespace Loam

template<>
struct std::hash<Loam::TypeInfo> {
    std::size_t operator()(const Loam::TypeInfo& type) const noexcept { return type.info().hash_code(); }
};
