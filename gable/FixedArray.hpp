#pragma once

#include <gable/Export.hpp>

#include <cstddef>
#include <compare>
#include <type_traits>

namespace Gyre {

/// An array of \p N values of type \p T: an aggregate like a plain array that can be
/// copied, compared and returned. It contains nothing but the values.
template<class T, std::size_t N>
struct FixedArray {
    static_assert(N > 0);

    using value_type = T;

    T elements[N];

    static constexpr std::size_t size() noexcept { return N; }

    /// \pre \p index is less than \p N.
    constexpr T& operator[](std::size_t index) noexcept { return elements[index]; }
    constexpr const T& operator[](std::size_t index) const noexcept { return elements[index]; }

    constexpr T* data() noexcept { return elements; }
    constexpr const T* data() const noexcept { return elements; }

    constexpr T* begin() noexcept { return elements; }
    constexpr const T* begin() const noexcept { return elements; }
    constexpr T* end() noexcept { return elements + N; }
    constexpr const T* end() const noexcept { return elements + N; }

    /// Compares element by element.
    friend constexpr bool operator==(const FixedArray&, const FixedArray&) = default;
    friend constexpr auto operator<=>(const FixedArray&, const FixedArray&) = default;
};

template<class T, class... Rest>
    requires(std::is_same_v<T, Rest> && ...)
FixedArray(T, Rest...) -> FixedArray<T, 1 + sizeof...(Rest)>;

} // namespace Gyre
