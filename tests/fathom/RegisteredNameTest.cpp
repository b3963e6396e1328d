#include <fathom/RegisteredName.hpp>

#include <gtest/gtest.h>

#include <type_traits>

namespace RegisteredNameTest {

using Orla::RegisteredName;

static_assert(!std::is_copy_constructible_v<RegisteredName>, "a copy would remove the name too early");

TEST(RegisteredName, isTheNameOfTheTypeWhileItExists)
{
    struct Tide {};
    const std::string before = Loam::Typename(typeid(Tide));
    {
        const RegisteredName name{typeid(Tide), "tidal range"};
        EXPECT_EQ(Loam::Typename(typeid(Tide)), "tidal range");
    }
    EXPECT_EQ(Loam::Typename(typeid(Tide)), before);
}

} // namespace RegisteredNameTest
