#include <fathom/VTextOfMembers.hpp>

#include <fathom/String.hpp>
#include <fathom/VValueType.hpp>

#include <gmock/gmock.h>

#include <string>

namespace VTextOfMembersTest {

struct Tempo {
    double beats = 90;
    int perBar = 4;
    std::string name;

    friend bool operator==(const Tempo&, const Tempo&) = default;
};

struct Plain {
    double first = 0;
    double second = 0;
};

} // namespace VTextOfMembersTest

using VTextOfMembersTest::Plain;
using VTextOfMembersTest::Tempo;

template<>
struct Orla::VValueTrait<Tempo> : Orla::VTextOfMembers<Tempo, '/', &Tempo::beats, &Tempo::perBar, &Tempo::name> {
    static bool isValid(const Tempo& tempo) { return tempo.beats >= 0; }
};

template<>
struct Orla::VValueTrait<Plain> : Orla::VTextOfMembers<Plain, ':', &Plain::first, &Plain::second> {};

namespace VTextOfMembersTest {

namespace {

using Trait = Orla::VValueTrait<Tempo>;

} // namespace

TEST(TextOfMembers, hasTheTextsOfTheMembersInOrder)
{
    EXPECT_EQ(Trait::Text(Tempo{92.5, 3, "waltz/slow"}), "92.5/3/waltz/slow");
    EXPECT_EQ(Orla::VValueTrait<Plain>::Text(Plain{1, -2}), "1:-2");
}

TEST(TextOfMembers, isReadBack)
{
    Tempo tempo;
    ASSERT_TRUE(Trait::setValueFromText(tempo, "92.5/3/waltz/slow"));
    EXPECT_EQ(tempo, (Tempo{92.5, 3, "waltz/slow"})) << "the last member takes the rest";
    ASSERT_TRUE(Trait::setValueFromText(tempo, " 80 / 4 /"));
    EXPECT_EQ(tempo, (Tempo{80, 4, ""}));
}

TEST(TextOfMembers, isRefusedUnlessEachMemberIsComplete)
{
    for (const char* text :
         {"", "92.5", "92.5/3", "x/3/a", "92.5 bpm/3/a", "92.5/3.5/a", "/3/a", "-1/3/a", "nan/3/a"}) {
        Tempo tempo{1, 2, "kept"};
        EXPECT_FALSE(Trait::setValueFromText(tempo, text)) << text;
        EXPECT_EQ(tempo, (Tempo{1, 2, "kept"})) << text;
    }
    Plain plain;
    EXPECT_FALSE(Orla::VValueTrait<Plain>::setValueFromText(plain, "1:2:3"));
    EXPECT_TRUE(Orla::VValueTrait<Plain>::setValueFromText(plain, "-1:2")) << "it has no check";
}

} // namespace VTextOfMembersTest
