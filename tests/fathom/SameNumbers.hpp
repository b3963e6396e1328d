#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>

inline bool sameBits(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// Expects numbers of equal bits; the sign of zero does not count.
inline void expectSameNumbers(const double* a, const double* b, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        EXPECT_TRUE(sameBits(a[i], b[i]) || (a[i] == 0 && b[i] == 0)) << i << ": " << a[i] << " and " << b[i];
}
