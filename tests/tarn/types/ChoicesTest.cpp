#include <tarn/types/Choices.hpp>

#include <fathom/Double.hpp>

#include <gmock/gmock.h>

namespace ChoicesTest {

using namespace Tarn;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

template<class T>
std::vector<std::string> choicesIn(const T& content)
{
    return choicesOf(*Loam::makeStrong<Orla::VValue<T>>(content));
}

} // namespace

TEST(Choices, areTheNamesThatAValueOffers)
{
    EXPECT_THAT(choicesIn(Orla::Enum{"linear", "cubic"}), ElementsAre("linear", "cubic"));
    EXPECT_THAT(choicesIn(OneOf{Loam::makeStrong<Orla::StringSelection>(',', "a,b", "b")}), ElementsAre("a", "b"));
    EXPECT_THAT(choicesIn(SomeOf{Loam::makeStrong<Orla::MultipleStringSelection>("b", "a,b", ',')}),
                ElementsAre("a", "b"));
}

TEST(Choices, areMissingInOtherValues)
{
    EXPECT_THAT(choicesIn(5.0), IsEmpty());
    EXPECT_THAT(choicesIn(OneOf{}), IsEmpty());
    EXPECT_EQ(contentOf<double>(*Loam::makeStrong<Orla::VValue<double>>(5.0)), 5.0);
    EXPECT_EQ(contentOf<double>(*Loam::makeStrong<Orla::VValue<Orla::Enum>>(Orla::Enum{"a"})), 0.0);
}

} // namespace ChoicesTest
