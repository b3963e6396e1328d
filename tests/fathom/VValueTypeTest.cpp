#include <fathom/VValueType.hpp>

#include "support/SlotLaws.hpp"
#include "support/ValueLaws.hpp"

#include <algorithm>

namespace VValueTypeTest {

namespace {

// A type as a client library defines it: a plain value, its text form and one declaration.
struct Depth {
    double metres = 0;

    friend bool operator==(const Depth&, const Depth&) = default;
};

// A type that nothing else here uses.
struct Unused {
    friend bool operator==(const Unused&, const Unused&) = default;
};

} // namespace

} // namespace VValueTypeTest

template<>
struct Orla::VValueTrait<VValueTypeTest::Depth> {
    using Depth = VValueTypeTest::Depth;

    static std::string Text(const Depth& depth) { return VValueTrait<double>::Text(depth.metres) + "m"; }

    static bool setValueFromText(Depth& depth, const std::string& text)
    {
        return VValueTrait<double>::setValueFromText(depth.metres, text);
    }
};

template<>
struct Orla::VValueTrait<VValueTypeTest::Unused> {
    using Unused = VValueTypeTest::Unused;

    static std::string Text(const Unused&) { return ""; }
    static bool setValueFromText(Unused&, const std::string&) { return true; }
};

namespace VValueTypeTest {

namespace {

const Orla::VValueType<Depth> depthType{"depth"};
const Orla::VValueType<Unused> unusedType;

} // namespace

} // namespace VValueTypeTest

template<>
std::vector<VValueTypeTest::Depth> samples<VValueTypeTest::Depth>()
{
    using VValueTypeTest::Depth;
    return {Depth{}, Depth{10.5}, Depth{-1}};
}

namespace VValueTypeTest {

INSTANTIATE_TYPED_TEST_SUITE_P(VValueType, ValueLaws, Depth);
INSTANTIATE_TYPED_TEST_SUITE_P(VValueType, SlotLaws, Depth);

TEST(VValueType, sufficesToRegisterAType)
{
    EXPECT_TRUE(Orla::VValueCreator::find("Unused"));
    EXPECT_TRUE(Orla::TypedSlotCreator::find(typeid(Unused)));
}

TEST(VValueType, givesTheTypeALabelIfItHasOne)
{
    EXPECT_EQ(Orla::VTypeLabel::of(typeid(Depth)), "depth");
    EXPECT_EQ(Orla::VTypeLabel::of(typeid(Unused)), "Unused");
}

TEST(VValueType, canBeDeclaredTwiceForTheSameType)
{
    using namespace Orla;
    const auto value = VValueCreator::find("Depth");
    const auto slot = TypedSlotCreator::find(typeid(Depth));
    EXPECT_TRUE(value && slot);
    {
        const VValueType<Depth> again;
    }
    EXPECT_EQ(VValueCreator::find("Depth"), value);
    EXPECT_EQ(TypedSlotCreator::find(typeid(Depth)), slot);
    const std::vector<std::string> names = VValueCreator::names();
    EXPECT_EQ(std::count(names.begin(), names.end(), "Depth"), 1);
}

} // namespace VValueTypeTest
