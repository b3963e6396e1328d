#include <fathom/Char.hpp>

#include "support/SlotLaws.hpp"
#include "support/ValueLaws.hpp"

#include <limits>

namespace CharTest {

using namespace Orla;

} // namespace CharTest

template<>
std::vector<char> samples<char>()
{
    return {'\0', ' ', 'a', '5', '\n', std::numeric_limits<char>::max()};
}

namespace CharTest {

INSTANTIATE_TYPED_TEST_SUITE_P(Char, ValueLaws, char);
INSTANTIATE_TYPED_TEST_SUITE_P(Char, SlotLaws, char);

TEST(Char, isNulByDefault)
{
    char character = 'x';
    EXPECT_TRUE(VValue<char>().getValue(character));
    EXPECT_EQ(character, '\0');
}

TEST(Char, acceptsOneCharacterOrTheEmptyTextForNul)
{
    VValue<char> value('x');
    EXPECT_FALSE(value.setValueFromText("ab"));
    EXPECT_EQ(value.Text(), "x");
    EXPECT_TRUE(value.setValueFromText(""));
    EXPECT_EQ(value.Text(), "");
    char character = 'x';
    EXPECT_TRUE(value.getValue(character));
    EXPECT_EQ(character, '\0');
}

} // namespace CharTest
