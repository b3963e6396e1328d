#include <fathom/String.hpp>

#include "support/SlotLaws.hpp"
#include "support/ValueLaws.hpp"

namespace StringTest {

using namespace Orla;

} // namespace StringTest

template<>
std::vector<std::string> samples<std::string>()
{
    return {"", " a text ", "5", "line\nline", std::string("a\0b", 3), std::string(1000, 'x')};
}

namespace StringTest {

INSTANTIATE_TYPED_TEST_SUITE_P(String, ValueLaws, std::string);
INSTANTIATE_TYPED_TEST_SUITE_P(String, SlotLaws, std::string);

TEST(String, isRegisteredUnderItsUserVisibleName)
{
    EXPECT_TRUE(VValueCreator::find("string"));
}

TEST(String, isItsOwnText)
{
    VValue<std::string> value("before");
    EXPECT_TRUE(value.setValueFromText(" as it is\t"));
    EXPECT_EQ(value.Text(), " as it is\t");
}

} // namespace StringTest
