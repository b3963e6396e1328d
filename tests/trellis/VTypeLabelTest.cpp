#include <trellis/VTypeLabel.hpp> // first: the header must be self-contained

#include <loam/Typename.hpp>

#include <gtest/gtest.h>

#include <optional>

namespace VTypeLabelTest {

using Orla::VTypeLabel;

namespace {

struct Tide {};
struct Ebb {};

TEST(VTypeLabel, isUsedWhileItLives)
{
    EXPECT_EQ(VTypeLabel::of(typeid(Tide)), "Tide");
    {
        const VTypeLabel label{typeid(Tide), "height of the tide"};
        EXPECT_EQ(VTypeLabel::of(typeid(Tide)), "height of the tide");
        EXPECT_EQ(VTypeLabel::of(typeid(Ebb)), "Ebb");
        EXPECT_EQ(Loam::Typename(typeid(Tide)), "Tide") << "programs find the type by its old name";
    }
    EXPECT_EQ(VTypeLabel::of(typeid(Tide)), "Tide");
}

TEST(VTypeLabel, mayHaveAnExampleOfATextThatTheTypeAccepts)
{
    EXPECT_EQ(VTypeLabel::exampleOf(typeid(Tide)), "");
    const VTypeLabel label{typeid(Tide), "height of the tide", "3.5 m"};
    EXPECT_EQ(VTypeLabel::exampleOf(typeid(Tide)), "3.5 m");
    EXPECT_EQ(VTypeLabel::exampleOf(typeid(Ebb)), "");
}

TEST(VTypeLabel, isTheRegisteredNameUnlessItIsDeclared)
{
    struct Flood {};
    Loam::setTypename(typeid(Flood), "the flood");
    EXPECT_EQ(VTypeLabel::of(typeid(Flood)), "the flood");
    const VTypeLabel empty{typeid(Flood), ""};
    EXPECT_EQ(VTypeLabel::of(typeid(Flood)), "the flood");
    Loam::unsetTypename(typeid(Flood));
}

TEST(VTypeLabel, isTheFirstOneOfATypeThatIsStillDeclared)
{
    std::optional<VTypeLabel> first(std::in_place, typeid(Tide), "first");
    std::optional<VTypeLabel> second(std::in_place, typeid(Tide), "second");
    EXPECT_EQ(VTypeLabel::of(typeid(Tide)), "first");
    first.reset();
    EXPECT_EQ(VTypeLabel::of(typeid(Tide)), "second");
    second.reset();
    EXPECT_EQ(VTypeLabel::of(typeid(Tide)), "Tide");
}

TEST(VTypeLabel, isQualifiedIfAnotherTypeHasItAlready)
{
    std::optional<VTypeLabel> tide(std::in_place, typeid(Tide), "water");
    const VTypeLabel ebb{typeid(Ebb), "water"};
    EXPECT_EQ(VTypeLabel::of(typeid(Tide)), "water");
    EXPECT_EQ(VTypeLabel::of(typeid(Ebb)), "water (Ebb)");
    tide.reset();
    EXPECT_EQ(VTypeLabel::of(typeid(Ebb)), "water");
}

TEST(VTypeLabel, isNotConfusedWithTheNameOfATypeWithoutLabel)
{
    const VTypeLabel tide{typeid(Tide), "Ebb"};
    EXPECT_EQ(VTypeLabel::of(typeid(Tide)), "Ebb");
    EXPECT_EQ(VTypeLabel::of(typeid(Ebb)), "Ebb (Ebb)");
}

} // namespace

} // namespace VTypeLabelTest
