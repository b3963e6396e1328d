#include <trellis/VValueTrait.hpp>

#include <gtest/gtest.h>

#include <limits>

namespace VValueTraitTest {

using namespace Orla;

namespace {

template<class T>
std::string text(T value)
{
    return VValueTrait<T>::Text(value);
}

template<class T>
void expectIntegersToRoundTrip()
{
    using Limits = std::numeric_limits<T>;
    for (const T value : {T{0}, T{1}, T{45}, Limits::max(), Limits::min(), static_cast<T>(Limits::max() - 1)}) {
        SCOPED_TRACE(std::to_string(value));
        EXPECT_EQ(text(value), std::to_string(value));
        T read = 7;
        EXPECT_TRUE(VValueTrait<T>::setValueFromText(read, text(value)));
        EXPECT_EQ(read, value);
    }
    for (const std::string refused : {"", "x", "-", "99999999999999999999999"}) {
        SCOPED_TRACE(refused);
        T kept = 7;
        EXPECT_FALSE(VValueTrait<T>::setValueFromText(kept, refused));
        EXPECT_EQ(kept, 7);
    }
}

template<class T>
void expectFloatsToRoundTrip()
{
    using Limits = std::numeric_limits<T>;
    for (const T value : {T{0}, T{1} / 3, T(-2.5e-7), Limits::max(), Limits::min(), Limits::denorm_min(),
                          Limits::epsilon(), Limits::infinity(), -Limits::infinity()}) {
        SCOPED_TRACE(text(value));
        T read = 7;
        EXPECT_TRUE(VValueTrait<T>::setValueFromText(read, text(value)));
        EXPECT_EQ(read, value);
    }
    EXPECT_EQ(text(T{45}), "45");
    EXPECT_EQ(text(static_cast<T>(0.1)), "0.1");
    EXPECT_EQ(text(Limits::infinity()), "inf");
    EXPECT_EQ(text(Limits::quiet_NaN()), "nan");
    T number = 7;
    EXPECT_TRUE(VValueTrait<T>::setValueFromText(number, " +4.5 m"));
    EXPECT_EQ(number, T(4.5));
    EXPECT_FALSE(VValueTrait<T>::setValueFromText(number, "m"));
    EXPECT_EQ(number, T(4.5));
}

} // namespace

TEST(VValueTrait, readsBackIntegersOfEverySize)
{
    expectIntegersToRoundTrip<short>();
    expectIntegersToRoundTrip<int>();
    expectIntegersToRoundTrip<long>();
    expectIntegersToRoundTrip<long long>();
    expectIntegersToRoundTrip<unsigned short>();
    expectIntegersToRoundTrip<unsigned int>();
    expectIntegersToRoundTrip<unsigned long>();
    expectIntegersToRoundTrip<unsigned long long>();
}

TEST(VValueTrait, refusesIntegersThatDoNotFit)
{
    short number = 7;
    EXPECT_FALSE(VValueTrait<short>::setValueFromText(number, "32768"));
    EXPECT_FALSE(VValueTrait<short>::setValueFromText(number, "-32769"));
    EXPECT_EQ(number, 7);
    unsigned natural = 7;
    EXPECT_FALSE(VValueTrait<unsigned>::setValueFromText(natural, "-1"));
    EXPECT_EQ(natural, 7u);
}

TEST(VValueTrait, readsBackFloatingPointNumbers)
{
    expectFloatsToRoundTrip<float>();
    expectFloatsToRoundTrip<double>();
}

TEST(VValueTrait, writesTheShortestTextThatReadsBack)
{
    EXPECT_EQ(text(0.1), "0.1");
    EXPECT_EQ(text(0.1f), "0.1");
    EXPECT_EQ(text(0.1 + 0.2), "0.30000000000000004");
}

TEST(VValueTrait, readsTruthValuesInFourSpellings)
{
    EXPECT_EQ(text(true), "true");
    EXPECT_EQ(text(false), "false");
    for (const std::string spelled : {"true", "on", "yes", "1", " true", "true\t", "\n 1 "}) {
        SCOPED_TRACE(spelled);
        bool read = false;
        EXPECT_TRUE(VValueTrait<bool>::setValueFromText(read, spelled));
        EXPECT_TRUE(read);
    }
    for (const std::string spelled : {"false", "off", "no", "0", "  off  "}) {
        SCOPED_TRACE(spelled);
        bool read = true;
        EXPECT_TRUE(VValueTrait<bool>::setValueFromText(read, spelled));
        EXPECT_FALSE(read);
    }
    for (const std::string& refused :
         {std::string(), std::string(" "), std::string("True"), std::string("ON"), std::string("t"),
          std::string("true false"), std::string("01"), std::string("+1"), std::string("true\0", 5)}) {
        SCOPED_TRACE(refused);
        for (const bool value : {false, true}) {
            bool kept = value;
            EXPECT_FALSE(VValueTrait<bool>::setValueFromText(kept, refused));
            EXPECT_EQ(kept, value);
        }
    }
}

TEST(VValueTrait, readsOneCharacterOrTheEmptyTextAsNul)
{
    for (const char value : {'a', ' ', '\0', ',', static_cast<char>(0xE4)}) {
        char read = 'x';
        EXPECT_TRUE(VValueTrait<char>::setValueFromText(read, text(value)));
        EXPECT_EQ(read, value);
    }
    EXPECT_EQ(text('\0'), "");
    EXPECT_EQ(text('a'), "a");
    char kept = 'x';
    EXPECT_FALSE(VValueTrait<char>::setValueFromText(kept, "ab"));
    EXPECT_EQ(kept, 'x');
}

TEST(VValueTrait, readsStringsVerbatim)
{
    for (const std::string& value : {std::string(), std::string(" a, b\n"), std::string("\0x", 2)}) {
        std::string read = "old";
        EXPECT_TRUE(VValueTrait<std::string>::setValueFromText(read, text(value)));
        EXPECT_EQ(read, value);
        EXPECT_EQ(text(value), value);
    }
}

} // namespace VValueTraitTest
