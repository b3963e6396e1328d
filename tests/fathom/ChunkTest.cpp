#include <fathom/Chunk.hpp> // first: the header must be self-contained

#include "support/Locales.hpp"

#include <loam/Typename.hpp>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace ChunkTest {

using namespace Orla;

namespace {

template<class T>
using Array = StrongPtr<TypedChunk<T>, ChunkBase>;

template<class T>
Array<T> arrayOf(const std::vector<T>& numbers)
{
    Array<T> array = Loam::TypedChunkBase<T>::createNewChunk(numbers.size());
    std::copy(numbers.begin(), numbers.end(), array->begin());
    return array;
}

template<class T>
std::vector<T> contentOf(const Array<T>& array)
{
    return {array->begin(), array->end()};
}

// Reference implementation: reads each piece from its own string.
template<class T>
bool readPiecewise(std::vector<T>& numbers, const std::string& text)
{
    std::vector<std::string> pieces;
    std::string piece;
    for (const char c : text) {
        if (c == ',') {
            pieces.push_back(piece);
            piece.clear();
        } else {
            piece += c;
        }
    }
    if (!piece.empty())
        pieces.push_back(piece);
    numbers.assign(pieces.size(), T{});
    bool any = false;
    for (std::size_t i = 0; i < pieces.size(); ++i)
        any |= VValueTrait<T>::setValueFromText(numbers[i], pieces[i]);
    return any;
}

template<class T>
void expectPiecewise(const std::string& text)
{
    Array<T> array;
    std::vector<T> expected;
    ASSERT_EQ(ParseString<T>(array, text), readPiecewise(expected, text)) << text;
    ASSERT_EQ(array->size(), expected.size()) << text;
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_TRUE((*array)[i] == expected[i] || (expected[i] != expected[i] && (*array)[i] != (*array)[i]))
            << text << " at " << i;
}

template<class T>
class NumberArrays : public testing::Test {};
using NumberTypes = testing::Types<double, float, short, int, long long>;
TYPED_TEST_SUITE(NumberArrays, NumberTypes);

TYPED_TEST(NumberArrays, areWrittenWithACommaAfterEachNumber)
{
    using Trait = VValueTrait<Array<TypeParam>>;
    EXPECT_EQ(Trait::Text(arrayOf<TypeParam>({1, 2, 3})), "1,2,3,");
    EXPECT_EQ(Trait::Text(arrayOf<TypeParam>({})), "");
    EXPECT_EQ(Trait::Text(nullptr), "");
}

TYPED_TEST(NumberArrays, areReadWithOrWithoutATrailingComma)
{
    using Trait = VValueTrait<Array<TypeParam>>;
    for (const char* text : {"1,2,3,", "1,2,3", " 1, 2,\n3 ,"}) {
        SCOPED_TRACE(text);
        Array<TypeParam> array;
        EXPECT_TRUE(Trait::setValueFromText(array, text));
        EXPECT_EQ(contentOf(array), (std::vector<TypeParam>{1, 2, 3}));
    }
}

TYPED_TEST(NumberArrays, holdZeroWhereAPieceCannotBeRead)
{
    const struct {
        std::string text;
        bool ok;
        std::vector<TypeParam> numbers;
    } cases[] = {
        {"1,x,3", true, {1, 0, 3}},
        {",1", true, {0, 1}},
        {"1,,3", true, {1, 0, 3}},
        {"x", false, {0}},
        {",", false, {0}},
        {",,", false, {0, 0}},
        {"", false, {}},
        {" ", false, {0}},
        {std::string("1,\0,3", 5), true, {1, 0, 3}},
    };
    for (const auto& [text, ok, numbers] : cases) {
        SCOPED_TRACE(text);
        Array<TypeParam> array = arrayOf<TypeParam>({9, 9});
        EXPECT_EQ(ParseString<TypeParam>(array, text), ok);
        EXPECT_EQ(contentOf(array), numbers);
    }
}

TYPED_TEST(NumberArrays, areReplacedEvenIfTheTextIsRefused)
{
    const Array<TypeParam> old = arrayOf<TypeParam>({9});
    Array<TypeParam> array = old;
    EXPECT_FALSE(ParseString<TypeParam>(array, "x,y"));
    EXPECT_EQ(contentOf(array), (std::vector<TypeParam>{0, 0}));
    EXPECT_EQ(contentOf(old), (std::vector<TypeParam>{9})) << "other owners keep the old array";
}

TYPED_TEST(NumberArrays, matchThePieceByPieceReferenceForAnyText)
{
    const std::string characters = "0123456789,,,,.eE+-xinfa \t\n@";
    std::mt19937 random(1);
    for (int i = 0; i < 20'000; ++i) {
        std::string text;
        for (auto n = random() % (i % 20 == 0 ? 700 : 24); n > 0; --n)
            text += characters[random() % characters.size()];
        if (i % 50 == 0 && !text.empty())
            text[random() % text.size()] = '\0';
        expectPiecewise<TypeParam>(text);
    }
    for (const char* text : {"1e400,1", "nan(1,2)", "nan(a),2", "0x,0x1p,3", "1e,2e+,3", "99999999999999999999,1",
                             "-,+,1", "inf,infinity,infi,1"})
        expectPiecewise<TypeParam>(text);
}

TYPED_TEST(NumberArrays, areReadBackBitForBit)
{
    std::mt19937_64 random(2);
    std::vector<TypeParam> numbers;
    for (int i = 0; i < 10'000; ++i) {
        TypeParam number;
        const std::uint64_t bits = random();
        std::memcpy(&number, &bits, sizeof number);
        if (number == number)
            numbers.push_back(number);
    }
    const Array<TypeParam> written = arrayOf(numbers);
    const std::string text = Stringify<TypeParam>(written);
    Array<TypeParam> read;
    EXPECT_TRUE(ParseString<TypeParam>(read, text));
    EXPECT_FALSE(VValueOperations<Array<TypeParam>>::areDifferent(written, read));

    std::string plain;
    for (const TypeParam number : numbers)
        plain += VValueTrait<TypeParam>::Text(number) + ",";
    EXPECT_EQ(text, plain);
}

TYPED_TEST(NumberArrays, haveTheSameTextInALocaleWithADecimalComma)
{
    const UnderDecimalComma comma;
    const Array<TypeParam> array = arrayOf<TypeParam>({TypeParam(5) / 2, 1000});
    const std::string text = Stringify<TypeParam>(array);
    EXPECT_EQ(text, VValueTrait<TypeParam>::Text(TypeParam(5) / 2) + ",1000,");
    Array<TypeParam> read;
    EXPECT_TRUE(ParseString<TypeParam>(read, text));
    EXPECT_EQ(contentOf(read), contentOf(array));
}

TYPED_TEST(NumberArrays, areComparedByContent)
{
    using Operations = VValueOperations<Array<TypeParam>>;
    const Array<TypeParam> none;
    const Array<TypeParam> empty = arrayOf<TypeParam>({});
    const Array<TypeParam> one = arrayOf<TypeParam>({1});
    EXPECT_FALSE(Operations::areDifferent(none, none));
    EXPECT_TRUE(Operations::areDifferent(none, empty)) << "null differs from an empty array";
    EXPECT_FALSE(Operations::areDifferent(one, arrayOf<TypeParam>({1})));
    EXPECT_TRUE(Operations::areDifferent(one, arrayOf<TypeParam>({2})));
    EXPECT_TRUE(Operations::areDifferent(one, arrayOf<TypeParam>({1, 1})));
}

TEST(Arrays, haveUserVisibleTypeNames)
{
    EXPECT_EQ(Loam::Typename(typeid(Array<double>)), "double[]");
    EXPECT_EQ(Loam::Typename(typeid(Array<float>)), "float[]");
    EXPECT_EQ(Loam::Typename(typeid(Array<short>)), "int16[]");
    EXPECT_EQ(Loam::Typename(typeid(Array<int>)), "int32[]");
    EXPECT_EQ(Loam::Typename(typeid(Array<long long>)), "int64[]");
    EXPECT_TRUE(VValueTrait<Array<double>>::TypenameInitialized && VValueTrait<Array<float>>::TypenameInitialized
                && VValueTrait<Array<short>>::TypenameInitialized && VValueTrait<Array<int>>::TypenameInitialized
                && VValueTrait<Array<long long>>::TypenameInitialized);
}

TEST(Arrays, subtractTheirMemoryFromTheTotalWhenDestroyed)
{
    const std::size_t before = ChunkBase::TotalMemsize;
    {
        Array<double> array;
        ParseString<double>(array, "1,2,3");
        EXPECT_EQ(ChunkBase::TotalMemsize, before + 3 * sizeof(double));
        ParseString<double>(array, "1");
        EXPECT_EQ(ChunkBase::TotalMemsize, before + sizeof(double));
    }
    EXPECT_EQ(ChunkBase::TotalMemsize, before);
}

} // namespace

TEST(ArrayPointer, isReportedBeforeReadingIfItRefersToAnotherKindOfArray)
{
    const Array<int> ints = arrayOf<int>({1, 2, 3});
    // What a wrong cast leaves; a static_cast would already be an error of its own.
    Array<double> wrong(reinterpret_cast<TypedChunk<double>*>(ints.get()));
    const Array<double> right = arrayOf<double>({1});
    const auto reported = [](auto&& function) {
        testing::internal::CaptureStdout();
        function();
        const std::string text = testing::internal::GetCapturedStdout();
        const bool isComplete =
            text.ends_with("inconsistent: the object is a TypedChunk<int>, not a TypedChunk<double>\n");
        return isComplete ? text.substr(0, text.find(": object ")) : text;
    };
    EXPECT_EQ(reported([&] { EXPECT_EQ(Stringify(wrong), ""); }), "Stringify");
    EXPECT_EQ(reported([&] { EXPECT_TRUE(VValueOperations<Array<double>>::areDifferent(wrong, right)); }),
              "isDifferentFrom");
    EXPECT_EQ(reported([&] { EXPECT_TRUE(VValueOperations<Array<double>>::areDifferent(right, wrong)); }),
              "isDifferentFrom");
    EXPECT_EQ(reported([&] { EXPECT_TRUE(ParseString(wrong, "4,5")); }), "ParseString");
    EXPECT_EQ(reported([&] { EXPECT_EQ(Stringify(wrong), "4,5,"); }), "") << "it is replaced";
    EXPECT_EQ(Stringify(ints), "1,2,3,") << "the other array is unchanged";
}

} // namespace ChunkTest
