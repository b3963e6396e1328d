#include <earth/UtcText.hpp>

#include <gtest/gtest.h>

#include <limits>

namespace UtcTextTest {

using Earth::utcText;

TEST(UtcText, formatsInstantsInIso8601)
{
    // The seconds were computed with GNU date.
    const struct {
        double seconds;
        const char* text;
    } cases[] = {
        {0, "1970-01-01T00:00:00Z"},
        {-0.0, "1970-01-01T00:00:00Z"},
        {1517356800, "2018-01-31T00:00:00Z"},
        {1518048000, "2018-02-08T00:00:00Z"},
        {1517363399, "2018-01-31T01:49:59Z"},
        {951782400, "2000-02-29T00:00:00Z"},
        {951868800, "2000-03-01T00:00:00Z"},
        {1709164800, "2024-02-29T00:00:00Z"},
        {4107542400, "2100-03-01T00:00:00Z"},
        {4107542399, "2100-02-28T23:59:59Z"},
        {-2203891200, "1900-03-01T00:00:00Z"},
        {-1, "1969-12-31T23:59:59Z"},
        {-86400, "1969-12-31T00:00:00Z"},
        {-62135596800, "0001-01-01T00:00:00Z"},
        {-62162121600, "0000-02-29T00:00:00Z"},
        {-62167219200, "0000-01-01T00:00:00Z"},
        {253402300799, "9999-12-31T23:59:59Z"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(utcText(seconds), text) << seconds;
}

TEST(UtcText, showsMillisecondsOnlyIfTheyAreNotZero)
{
    const struct {
        double seconds;
        const char* text;
    } cases[] = {
        {1517363399.65, "2018-01-31T01:49:59.650Z"},
        {1517966773.84, "2018-02-07T01:26:13.840Z"},
        {0.001, "1970-01-01T00:00:00.001Z"},
        {0.999, "1970-01-01T00:00:00.999Z"},
        {-0.001, "1969-12-31T23:59:59.999Z"},
        {-0.999, "1969-12-31T23:59:59.001Z"},
        {0.0004, "1970-01-01T00:00:00Z"},
        {-0.0004, "1970-01-01T00:00:00Z"},
        {0.9996, "1970-01-01T00:00:01Z"},
        {951868799.9996, "2000-03-01T00:00:00Z"},
        {253402300799.9996, "+010000-01-01T00:00:00Z"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(utcText(seconds), text) << seconds;
}

TEST(UtcText, writesYearsBefore0AndAfter9999WithASign)
{
    const struct {
        double seconds;
        const char* text;
    } cases[] = {
        {253402300800, "+010000-01-01T00:00:00Z"},   {-62167219201, "-000001-12-31T23:59:59Z"},
        {-62288352000, "-000004-02-29T00:00:00Z"},   {971890963199.999, "+032767-12-31T23:59:59.999Z"},
        {-1096193779200, "-032767-01-01T00:00:00Z"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(utcText(seconds), text) << seconds;
}

TEST(UtcText, returnsAMessageOutsideTheCalendar)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const struct {
        double seconds;
        const char* text;
    } cases[] = {
        {971890963200, "no calendar date (971890963200 s since 1970)"},
        {971890963199.9996, "no calendar date (971890963199.9996 s since 1970)"},
        {-1096193779200.001, "no calendar date (-1096193779200.001 s since 1970)"},
        {1e300, "no calendar date (1e+300 s since 1970)"},
        {-1e300, "no calendar date (-1e+300 s since 1970)"},
        {std::numeric_limits<double>::max(), "no calendar date (1.7976931348623157e+308 s since 1970)"},
        {infinity, "no calendar date (inf s since 1970)"},
        {-infinity, "no calendar date (-inf s since 1970)"},
        {-std::numeric_limits<double>::quiet_NaN(), "no calendar date (nan s since 1970)"},
        {std::numeric_limits<double>::quiet_NaN(), "no calendar date (nan s since 1970)"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(utcText(seconds), text) << seconds;
}

} // namespace UtcTextTest
