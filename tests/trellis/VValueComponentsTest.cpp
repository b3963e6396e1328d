#include <trellis/VValueComponents.hpp>

#include "support/TestNetwork.hpp"

#include <optional>

namespace VValueComponentsTest {

using namespace Orla;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Point {
    double x = 1;
    double y = 2;
    friend bool operator==(const Point&, const Point&) = default;
};

class VValueComponentsTest : public FrameworkTest {};

} // namespace

} // namespace VValueComponentsTest

template<>
struct Orla::VValueTrait<VValueComponentsTest::Point> {
    using Point = VValueComponentsTest::Point;

    static std::string Text(const Point&) { return {}; }
    static bool setValueFromText(Point&, const std::string&) { return false; }
};

namespace VValueComponentsTest {

TEST_F(VValueComponentsTest, existWhileTheyAreRegistered)
{
    EXPECT_THAT(VValueComponents::names(typeid(Point)), IsEmpty());
    EXPECT_EQ(VValueComponents::typeOf(typeid(Point), "x"), nullptr);
    {
        const VValueComponents components{
            typeid(Point), {TestPart<Point, &Point::y>::component("y"), TestPart<Point, &Point::x>::component("x")}};
        EXPECT_THAT(VValueComponents::names(typeid(Point)), ElementsAre("y", "x")) << "in the order of declaration";
        EXPECT_EQ(*VValueComponents::typeOf(typeid(Point), "x"), typeid(double));
        EXPECT_EQ(VValueComponents::typeOf(typeid(Point), "z"), nullptr);
        EXPECT_EQ(contentOf(VValueComponents::make(*testValue(Point{}), "y")), 2);
    }
    EXPECT_THAT(VValueComponents::names(typeid(Point)), IsEmpty());
    EXPECT_FALSE(VValueComponents::make(*testValue(Point{}), "x"));
}

TEST_F(VValueComponentsTest, haveTheTypeOfTheValueUnderTheEmptyName)
{
    EXPECT_EQ(*VValueComponents::typeOf(typeid(Point), ""), typeid(Point));
    EXPECT_EQ(*VValueComponents::typeOf(typeid(int), ""), typeid(int));
}

TEST_F(VValueComponentsTest, includeComponentsOfComponents)
{
    EXPECT_EQ(*VValueComponents::typeOf(typeid(Framed), "inner"), typeid(Interval));
    EXPECT_EQ(*VValueComponents::typeOf(typeid(Framed), "inner.low"), typeid(double));
    EXPECT_EQ(VValueComponents::typeOf(typeid(Framed), "inner.weight"), nullptr);
    EXPECT_EQ(VValueComponents::typeOf(typeid(Framed), "weight.low"), nullptr);
    EXPECT_EQ(VValueComponents::typeOf(typeid(Framed), "inner."), nullptr);
    EXPECT_THAT(VValueComponents::names(typeid(Framed)), ElementsAre("inner", "weight"));
}

TEST_F(VValueComponentsTest, takeEffectWhenAnEarlierRegistrationEnds)
{
    const auto component = TestPart<Point, &Point::x>::component;
    std::optional<VValueComponents> first(std::in_place, typeid(Point), std::vector{component("first")});
    std::optional<VValueComponents> second(std::in_place, typeid(Point), std::vector{component("second")});
    EXPECT_THAT(VValueComponents::names(typeid(Point)), ElementsAre("first"));
    first.reset();
    EXPECT_THAT(VValueComponents::names(typeid(Point)), ElementsAre("second"));
    EXPECT_EQ(VValueComponents::typeOf(typeid(Point), "first"), nullptr);
    second.reset();
    EXPECT_THAT(VValueComponents::names(typeid(Point)), IsEmpty());
}

TEST_F(VValueComponentsTest, mayQueryOthersWhileTheyAreCreated)
{
    const VValueComponents components{typeid(Point),
                                      {{"first letter", &typeid(double),
                                        [](VValueBase& whole) {
                                            return VValueComponents::names(whole.getType()).size() == 2
                                                       ? VValueComponents::make(whole, "x")
                                                       : nullptr;
                                        }},
                                       TestPart<Point, &Point::x>::component("x")}};
    EXPECT_EQ(contentOf(testValue(Point{})->component("first letter")), 1);
}

} // namespace VValueComponentsTest
