#include <fathom/Char.hpp>
#include <fathom/Double.hpp>
#include <fathom/String.hpp>

#include "support/SlotLaws.hpp"
#include "support/ValueLaws.hpp"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace OptionsTest {

using namespace Orla;

using Limits = std::numeric_limits<double>;

constexpr double NaN = Limits::quiet_NaN();

} // namespace OptionsTest

template<>
std::vector<double> samples<double>()
{
    using Limits = std::numeric_limits<double>;
    return {
        0, 45, -1.5, 0.1, 1.0 / 3, 1e300, Limits::denorm_min(), Limits::max(), Limits::infinity(), -Limits::infinity()};
}

template<>
std::vector<char> samples<char>()
{
    return {'\0', ' ', 'a', '5', '\n', std::numeric_limits<char>::max()};
}

template<>
std::vector<std::string> samples<std::string>()
{
    return {"", " a text ", "5", "line\nline", std::string("a\0b", 3), std::string(1000, 'x')};
}

namespace OptionsTest {

INSTANTIATE_TYPED_TEST_SUITE_P(Double, ValueLaws, double);

TEST(Double, writesTheShortestTextThatReadsBack)
{
    const struct {
        double number;
        const char* text;
    } cases[] = {
        {45, "45"}, {0.1, "0.1"}, {-0.0, "-0"}, {1e22, "1e+22"}, {NaN, "nan"}, {Limits::infinity(), "inf"},
    };
    for (const auto& [number, text] : cases)
        EXPECT_EQ(VValue<double>(number).Text(), text);
}

TEST(Double, keepsNaNAndTheSignOfZeroThroughItsText)
{
    double number = 1;
    VValue<double> value(1);
    EXPECT_TRUE(value.setValueFromText(VValue<double>(-0.0).Text()));
    value.getValue(number);
    EXPECT_TRUE(number == 0 && std::signbit(number));
    EXPECT_TRUE(value.setValueFromText(VValue<double>(NaN).Text()));
    value.getValue(number);
    EXPECT_TRUE(std::isnan(number));
}

TEST(Double, readsTheLeadingNumberAndRefusesTextWithoutOne)
{
    VValue<double> value(7);
    for (const char* text : {"", "x", ",5", "--1"}) {
        EXPECT_FALSE(value.setValueFromText(text)) << text;
        EXPECT_EQ(value.Text(), "7") << text;
    }
    EXPECT_TRUE(value.setValueFromText(" +2.5 metres"));
    EXPECT_EQ(value.Text(), "2.5");
    EXPECT_TRUE(value.setValueFromText("0,5"));
    EXPECT_EQ(value.Text(), "0");
}

TEST(Double, isIntentionallyNeverDifferentFromNaN)
{
    const struct {
        double a, b;
    } cases[] = {{NaN, NaN}, {NaN, 1}, {1, NaN}, {-NaN, Limits::infinity()}};
    for (const auto& [a, b] : cases)
        EXPECT_FALSE(VValue<double>(a).isDifferentFrom(Loam::makeStrong<VValue<double>>(b))) << a << ' ' << b;
}

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

} // namespace OptionsTest
