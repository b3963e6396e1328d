#include <gable/ColorTypes.hpp> // first: checks that the header is self-contained

#include <gtest/gtest.h>

namespace ColorTypesTest {

static_assert(sizeof(Gyre::rgba_float_t) == 4 * sizeof(float));

TEST(ColorTypes, startBlackAndOpaque)
{
    EXPECT_EQ(Gyre::rgba_float_t(), (Gyre::rgba_float_t{0, 0, 0, 1}));
    EXPECT_FALSE((Gyre::rgba_float_t{0, 0, 0, 0.5f}) == Gyre::rgba_float_t());
}

} // namespace ColorTypesTest
