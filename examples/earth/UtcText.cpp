#include <earth/UtcText.hpp>

#include <loam/Numbers.hpp>

#include <chrono>
#include <cmath>
#include <cstddef>

namespace Earth {

namespace {

/// \pre \p number is not negative.
std::string digits(long long number, std::size_t count)
{
    const std::string text = Loam::numberText(number);
    return text.size() < count ? std::string(count - text.size(), '0') + text : text;
}

std::string yearText(int year)
{
    if (year >= 0 && year <= 9999)
        return digits(year, 4);
    return year < 0 ? '-' + digits(-year, 6) : '+' + digits(year, 6);
}

} // namespace

std::string utcText(double seconds)
{
    using namespace std::chrono;
    using Instant = sys_time<milliseconds>;

    constexpr Instant first = sys_days{year::min() / January / 1};
    constexpr Instant afterLast = sys_days{year::max() / December / 31} + days{1};

    const double rounded = std::round(seconds * 1000);
    // This form of the comparison also excludes NaN.
    if (!(rounded >= static_cast<double>(first.time_since_epoch().count())
          && rounded < static_cast<double>(afterLast.time_since_epoch().count())))
        return "no calendar date (" + (std::isnan(seconds) ? "nan" : Loam::numberText(seconds)) + " s since 1970)";

    const Instant instant{milliseconds{static_cast<milliseconds::rep>(rounded)}};
    const sys_days midnight = floor<days>(instant);
    const year_month_day date{midnight};
    const hh_mm_ss time{instant - midnight};

    std::string text = yearText(int{date.year()});
    text += '-' + digits(unsigned{date.month()}, 2);
    text += '-' + digits(unsigned{date.day()}, 2);
    text += 'T' + digits(time.hours().count(), 2);
    text += ':' + digits(time.minutes().count(), 2);
    text += ':' + digits(time.seconds().count(), 2);
    if (time.subseconds() != milliseconds::zero())
        text += '.' + digits(time.subseconds().count(), 3);
    return text + 'Z';
}

} // namespace Earth
