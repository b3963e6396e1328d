#include <fathom/VCamera.hpp> // first: the header must be self-contained

#include "SameNumbers.hpp"

#include "support/Locales.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace VCameraTest {

using namespace Orla;

using Point = Gyre::PhysicalSpace::point;
using Matrix = std::array<double, 16>;
using Trait = VValueTrait<VCamera>;

namespace {

TEST(VCamera, looksFromOneUnitAlongYWithZUp)
{
    const VCamera camera;
    EXPECT_EQ(camera.position, Point(0, 1, 0));
    EXPECT_EQ(camera.focus, Point(0, 0, 0));
    EXPECT_EQ(camera.up, Gyre::PhysicalSpace::bivector(0, 0, 1));
    EXPECT_EQ(camera.fieldOfView, 45.0);
    VCamera other({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, -1);
    EXPECT_EQ(other.up, Gyre::PhysicalSpace::bivector(7, 8, 9)) << "nothing is normalised";
    EXPECT_FALSE(other == camera);
    other.reset();
    EXPECT_EQ(other, camera);
}

// The numbers come from a Python program that performs the same operations on doubles
// in the same order.
TEST(VCamera, hasABitExactLookAtMatrix)
{
    const struct {
        Point position;
        Point focus;
        Gyre::PhysicalSpace::bivector up;
        Matrix matrix;
    } cases[] = {
        {{0.0, 1.0, 0.0},
         {0.0, 0.0, 0.0},
         {0.0, 0.0, 1.0},
         {-0x1.0000000000000p+0, 0x0.0p+0, -0x0.0p+0, 0x0.0p+0, 0x0.0p+0, 0x0.0p+0, 0x1.0000000000000p+0, 0x0.0p+0,
          0x0.0p+0, 0x1.0000000000000p+0, -0x0.0p+0, 0x0.0p+0, 0x0.0p+0, 0x0.0p+0, -0x1.0000000000000p+0,
          0x1.0000000000000p+0}},
        {{1.0, 2.0, 3.0},
         {4.0, -5.0, 6.0},
         {0.0, 1.0, 1.0},
         {-0x1.d7558e6acd4f3p-1, 0x1.14658b9ef2774p-3, -0x1.774df5e0f8499p-2, 0x0.0p+0, -0x1.1accef0ce195fp-2,
          0x1.c12502e24a01bp-2, 0x1.b5daf43121ab2p-1, 0x0.0p+0, 0x1.1accef0ce195fp-2, 0x1.c6e7207599b98p-1,
          -0x1.774df5e0f8499p-2, 0x0.0p+0, 0x1.49ef16e45c844p-1, -0x1.d6bcf1cab4f30p+1, -0x1.f467f2814b0c8p-3,
          0x1.0000000000000p+0}},
        {{6400000.0, -1100000.0, 330000.0},
         {10.5, 20.25, -30.125},
         {0.1, 0.2, 3.0},
         {0x1.61582e1eb7d0ap-3, -0x1.35c01baed4c3cp-5, 0x1.f7f34972606d7p-1, 0x0.0p+0, 0x1.f700470eb5da5p-1,
          0x1.431ac620a2f99p-4, -0x1.5a7909be7617dp-3, 0x0.0p+0, -0x1.23d2d3a37e4f2p-4, 0x1.fe098a8c47787p-1,
          0x1.9fcc33d6784dep-5, 0x0.0p+0, -0x1.7da197e77bc00p+4, 0x1.ccf24dd350000p+4, -0x1.8cdd3ac9824fdp+22,
          0x1.0000000000000p+0}},
        {{0.001, 0.002, 1.5},
         {0.3, 0.1, -7.0},
         {5.0, 0.0, 0.001},
         {0x1.3577b113b8325p-19, 0x1.ffaefe23d9e02p-1, -0x1.1ff7e9cf49498p-5, 0x0.0p+0, -0x1.fff74a1a5c6c8p-1,
          -0x1.a686bd4af69c8p-12, -0x1.798984ba24263p-7, 0x0.0p+0, -0x1.79c49ba892598p-7, 0x1.1ff311e4718c5p-5,
          0x1.ffa649970a222p-1, 0x0.0p+0, 0x1.3c177f33e4f2ep-6, -0x1.b81ac5471f2c2p-5, -0x1.7fb8e6d5ca513p+0,
          0x1.0000000000000p+0}},
    };
    for (const auto& [position, focus, up, expected] : cases) {
        const VCamera camera(position, focus, up, 45);
        SCOPED_TRACE(Trait::Text(camera));
        Matrix matrix = camera.untranslatedLookAt();
        expectSameNumbers(matrix.data(), expected.data(), 12);
        EXPECT_EQ((std::vector<double>(matrix.begin() + 12, matrix.end())), (std::vector<double>{0, 0, 0, 1}));

        Matrix written;
        written.fill(99);
        camera.untranslatedLookAt(written.data());
        using Bits = std::array<std::uint64_t, 16>;
        EXPECT_EQ(std::bit_cast<Bits>(written), std::bit_cast<Bits>(matrix))
            << "both overloads give the same matrix and overwrite every element";

        camera.translate(matrix);
        expectSameNumbers(matrix.data(), expected.data(), 16);
    }
}

TEST(VCamera, putsItsPositionAtTheOriginAndItsFocusOnTheNegativeZAxis)
{
    const VCamera camera({1, 2, 3}, {4, -5, 6}, {0, 1, 1}, 60);
    Matrix M = camera.untranslatedLookAt();
    camera.translate(M);
    const auto seen = [&M](const Point& p) {
        return Point(M[0] * p.x() + M[4] * p.y() + M[8] * p.z() + M[12],
                     M[1] * p.x() + M[5] * p.y() + M[9] * p.z() + M[13],
                     M[2] * p.x() + M[6] * p.y() + M[10] * p.z() + M[14]);
    };
    const Point eye = seen(camera.position);
    const Point focus = seen(camera.focus);
    const double distance = std::sqrt(9.0 + 49.0 + 9.0);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(eye[i], 0.0, 1e-14);
        EXPECT_NEAR(focus[i], i == 2 ? -distance : 0.0, 1e-14);
    }
}

TEST(VCamera, translatesMatricesThatAreNotRotationsToo)
{
    Matrix M;
    for (std::size_t i = 0; i < 16; ++i)
        M[i] = static_cast<double>(i + 1);
    VCamera({2, 3, 5}, {}, {}, 0).translate(M);
    // M[12 + r] - M[8 + r] * 5 - (M[r] * 2 + M[4 + r] * 3), by hand.
    EXPECT_EQ((std::vector<double>(M.begin() + 12, M.end())),
              (std::vector<double>{13 - 45 - 17, 14 - 50 - 22, 15 - 55 - 27, 16 - 60 - 32}));
}

TEST(VCamera, ignoresTheLengthOfUp)
{
    const Matrix a = VCamera({0, 5, 0}, {0, 0, 0}, {0, 1, 1}, 45).untranslatedLookAt();
    const Matrix b = VCamera({0, 5, 0}, {0, 0, 0}, {0, 1e10, 1e10}, 45).untranslatedLookAt();
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_NEAR(a[i], b[i], 1e-15);
}

TEST(VCamera, givesNaNForADegenerateView)
{
    EXPECT_TRUE(std::isnan(VCamera({1, 1, 1}, {1, 1, 1}, {0, 0, 1}, 45).untranslatedLookAt()[2]));
    EXPECT_TRUE(std::isnan(VCamera({0, 0, 1}, {0, 0, 0}, {0, 0, 1}, 45).untranslatedLookAt()[0]));
    EXPECT_TRUE(std::isnan(VCamera({0, 1, 0}, {0, 0, 0}, {0, 0, 0}, 45).untranslatedLookAt()[0]));
}

TEST(VCamera, isWrittenAsThreeTriplesAndAnAngle)
{
    EXPECT_EQ(Trait::Text(VCamera()), "{0,1,0}{0,0,0}{0,0,1}45");
    const UnderDecimalComma comma;
    EXPECT_EQ(Trait::Text(VCamera({0.5, 1, 0}, {0, 0, 0}, {0, 0, 1}, 22.5)), "{0.5,1,0}{0,0,0}{0,0,1}22.5");
}

TEST(VCamera, readsBackWhatItWrote)
{
    for (const VCamera& camera : {VCamera(), VCamera({1.0 / 3, -2e300, 5e-324}, {1, 2, 3}, {0.1, 0.2, 0.3}, 1e-9)}) {
        VCamera read({9, 9, 9}, {9, 9, 9}, {9, 9, 9}, 9);
        EXPECT_TRUE(Trait::setValueFromText(read, Trait::Text(camera)));
        EXPECT_EQ(read, camera);
    }
}

TEST(VCamera, keepsWhatWasReadBeforeTheFirstError)
{
    const struct {
        const char* text;
        bool ok;
        const char* left;
    } cases[] = {
        {"{1,2,3}{4,5,6}{7,8,9}10", true, "{1,2,3}{4,5,6}{7,8,9}10"},
        {"{1,2,3}{4,5,6}{7,8,9}10 and more", true, "{1,2,3}{4,5,6}{7,8,9}10"},
        {"{ 1,\t2, 3}{ 4,5,6}{7,8,9} 10", true, "{1,2,3}{4,5,6}{7,8,9}10"},
        {"{1,2,3}{4,5,6}{7,8,9}", false, "{1,2,3}{4,5,6}{7,8,9}45"},
        {"{1,2,3}{4,5", false, "{1,2,3}{4,5,0}{0,0,1}45"},
        {"{1 ,2,3}{4,5,6}{7,8,9}10", false, "{1,1,0}{0,0,0}{0,0,1}45"},
        {"{1,2,3} {4,5,6}{7,8,9}10", false, "{1,2,3}{0,0,0}{0,0,1}45"},
        {" {1,2,3}{4,5,6}{7,8,9}10", false, "{0,1,0}{0,0,0}{0,0,1}45"},
        {"{1;2;3}", false, "{1,1,0}{0,0,0}{0,0,1}45"},
        {"", false, "{0,1,0}{0,0,0}{0,0,1}45"},
        {"{0x10,1e2,inf}{nan", false, "{16,100,inf}{nan,0,0}{0,0,1}45"},
    };
    for (const auto& [text, ok, left] : cases) {
        SCOPED_TRACE(text);
        VCamera camera;
        EXPECT_EQ(Trait::setValueFromText(camera, text), ok);
        EXPECT_EQ(Trait::Text(camera), left);
    }
}

TEST(VCamera, readsLikeSscanf)
{
    const InClassicLocale classic;
    const std::string characters = "0123456789.e+-xinfa {},, \n";
    std::mt19937 random(1);
    for (int i = 0; i < 50'000; ++i) {
        std::string text = "{1,2,3}{4,5,6}{7,8,9}10";
        for (auto n = random() % 4; n > 0; --n)
            text[random() % text.size()] = characters[random() % characters.size()];
        VCamera expected;
        const int count =
            std::sscanf(text.c_str(), "{%lg,%lg,%lg}{%lg,%lg,%lg}{%lg,%lg,%lg}%lg", &expected.position[0],
                        &expected.position[1], &expected.position[2], &expected.focus[0], &expected.focus[1],
                        &expected.focus[2], &expected.up[0], &expected.up[1], &expected.up[2], &expected.fieldOfView);
        VCamera read;
        ASSERT_EQ(Trait::setValueFromText(read, text), count == 10) << text;
        ASSERT_EQ(Trait::Text(read), Trait::Text(expected)) << text;
    }
}

} // namespace

} // namespace VCameraTest
