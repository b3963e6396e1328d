#include <tarn/standard/Moment.hpp>

#include <fathom/VComponent.hpp>
#include <fathom/VValueType.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace Tarn {

namespace {

struct Unit {
    std::string_view name;
    double seconds;
};

// The largest last.
constexpr Unit units[] = {{"", 1}, {"s", 1}, {"min", 60}, {"h", 3600}, {"d", 86400}};

constexpr std::size_t MostDecimals = 9;
constexpr std::int64_t FractionsPerSecond = 1'000'000'000;

std::string_view withoutBlanks(std::string_view text) noexcept
{
    const char* const end = text.data() + text.size();
    const char* const begin = Loam::skipBlanks(text.data(), end);
    text = {begin, static_cast<std::size_t>(end - begin)};
    while (!text.empty() && Loam::skipBlanks(&text.back(), end) == end)
        text.remove_suffix(1);
    return text;
}

bool isDigit(char character) noexcept
{
    return character >= '0' && character <= '9';
}

// An instant in whole seconds since 1970 and billionths of a second from 0 on.
struct ExactInstant {
    std::int64_t seconds = 0;
    std::int64_t fractions = 0;
};

// Returns the nearest number. The sum of the two parts would be rounded twice.
double rounded(ExactInstant instant) noexcept
{
    const bool isNegative = instant.seconds < 0;
    if (isNegative && instant.fractions > 0)
        instant = {instant.seconds + 1, FractionsPerSecond - instant.fractions};
    char text[40];
    char* end = std::to_chars(text, text + sizeof text, isNegative ? -instant.seconds : instant.seconds).ptr;
    *end++ = '.';
    // The leading 1 keeps the zeros after the point.
    char* const fraction = end;
    end = std::to_chars(fraction, text + sizeof text, FractionsPerSecond + instant.fractions).ptr;
    for (char* digit = fraction; digit + 1 != end; ++digit)
        *digit = digit[1];
    double seconds = 0;
    std::from_chars(text, end - 1, seconds);
    return isNegative ? -seconds : seconds;
}

// Reads an instant from left to right.
class InstantReader {
public:
    explicit InstantReader(std::string_view text) noexcept : m_rest{text} {}

    std::optional<ExactInstant> read() noexcept
    {
        using namespace std::chrono;
        const int year = number(4);
        expect('-');
        const int month = number(2);
        expect('-');
        const int day = number(2);
        const year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                                  std::chrono::day{static_cast<unsigned>(day)}};
        if (!m_isValid || !date.ok())
            return std::nullopt;
        ExactInstant instant{sys_seconds{sys_days{date}}.time_since_epoch().count(), 0};
        if (skip('T'))
            readTimeOfDay(instant);
        const std::int64_t first = sys_seconds{sys_days{std::chrono::year{0} / January / 1}}.time_since_epoch().count();
        const std::int64_t end =
            sys_seconds{sys_days{std::chrono::year{10000} / January / 1}}.time_since_epoch().count();
        if (!m_isValid || !m_rest.empty() || instant.seconds < first || instant.seconds >= end)
            return std::nullopt;
        return instant;
    }

private:
    void readTimeOfDay(ExactInstant& instant) noexcept
    {
        const int hours = number(2, 23);
        expect(':');
        const int minutes = number(2, 59);
        const int seconds = skip(':') ? number(2, 59) : 0;
        // Only seconds have decimals, so minutes before a point are refused.
        if (m_hasSeconds && skip('.'))
            instant.fractions = decimals();
        instant.seconds += 3600 * hours + 60 * minutes + seconds - offset();
    }

    std::int64_t offset() noexcept
    {
        if (m_rest.empty() || skip('Z'))
            return 0;
        const bool isEast = skip('+');
        if (!isEast)
            expect('-');
        const int hours = number(2, 23);
        expect(':');
        const int minutes = number(2, 59);
        const int seconds = 3600 * hours + 60 * minutes;
        return isEast ? seconds : -seconds;
    }

    std::int64_t decimals() noexcept
    {
        std::int64_t fractions = 0;
        std::size_t count = 0;
        for (; !m_rest.empty() && isDigit(m_rest.front()); ++count, m_rest.remove_prefix(1)) {
            if (count < MostDecimals)
                fractions = 10 * fractions + (m_rest.front() - '0');
        }
        m_isValid = m_isValid && count > 0 && count <= MostDecimals;
        for (; count < MostDecimals; ++count)
            fractions *= 10;
        return fractions;
    }

    int number(int digits, int largest = 9999) noexcept
    {
        int value = 0;
        for (int i = 0; i < digits; ++i, m_rest.remove_prefix(1)) {
            if (m_rest.empty() || !isDigit(m_rest.front())) {
                m_isValid = false;
                return 0;
            }
            value = 10 * value + (m_rest.front() - '0');
        }
        m_isValid = m_isValid && value <= largest;
        return value;
    }

    bool skip(char character) noexcept
    {
        if (!m_rest.starts_with(character))
            return false;
        m_rest.remove_prefix(1);
        m_hasSeconds = m_hasSeconds || character == ':';
        return true;
    }

    void expect(char character) noexcept
    {
        if (m_rest.starts_with(character))
            m_rest.remove_prefix(1);
        else
            m_isValid = false;
    }

    std::string_view m_rest;
    bool m_isValid = true;
    bool m_hasSeconds = false;
};

std::string padded(std::int64_t number, std::size_t digits)
{
    const std::string text = std::to_string(number);
    return std::string(digits - std::min(digits, text.size()), '0') + text;
}

// Returns the instant with the fewest decimals that reads as `seconds`.
std::string instantText(double seconds)
{
    using namespace std::chrono;
    const double whole = std::floor(seconds);
    ExactInstant instant;
    std::size_t decimals = 0;
    for (std::int64_t unit = FractionsPerSecond; decimals <= MostDecimals; ++decimals, unit /= 10) {
        const auto fractions = unit * std::llround((seconds - whole) * static_cast<double>(FractionsPerSecond / unit));
        instant = {static_cast<std::int64_t>(whole), fractions};
        if (fractions == FractionsPerSecond)
            instant = {instant.seconds + 1, 0};
        if (rounded(instant) == seconds)
            break;
    }
    const sys_seconds second{std::chrono::seconds{instant.seconds}};
    const sys_days midnight = floor<days>(second);
    const year_month_day date{midnight};
    const hh_mm_ss time{second - midnight};
    std::string text = padded(int{date.year()}, 4) + '-' + padded(unsigned{date.month()}, 2) + '-'
                       + padded(unsigned{date.day()}, 2) + 'T' + padded(time.hours().count(), 2) + ':'
                       + padded(time.minutes().count(), 2) + ':' + padded(time.seconds().count(), 2);
    if (decimals > 0)
        text += '.' + padded(instant.fractions, MostDecimals).substr(0, decimals);
    return text + 'Z';
}

} // namespace

double Duration::seconds() const noexcept
{
    for (const Unit& each : units) {
        if (each.name == unit)
            return amount * each.seconds;
    }
    return amount;
}

std::string Duration::text() const
{
    const std::string number = Loam::numberText(amount);
    return unit.empty() ? number : number + ' ' + std::string(unit);
}

std::optional<Duration> Duration::read(std::string_view text) noexcept
{
    text = withoutBlanks(text);
    const char* const end = text.data() + text.size();
    double amount = 0;
    const char* const afterNumber = Loam::readNumber(text.data(), end, amount);
    // Hexadecimal numbers are refused: their digits may be units.
    if (!afterNumber || !std::isfinite(amount) || text.find_first_of("xX") != std::string_view::npos)
        return std::nullopt;
    const char* const afterBlanks = Loam::skipBlanks(afterNumber, end);
    const std::string_view rest(afterBlanks, static_cast<std::size_t>(end - afterBlanks));
    for (const Unit& each : units) {
        if (each.name == rest && std::isfinite(amount * each.seconds))
            return Duration{amount, each.name};
    }
    return std::nullopt;
}

Duration Duration::inLargestUnit(double seconds) noexcept
{
    const Unit* largest = &units[1];
    for (const Unit& each : units) {
        if (std::fmod(seconds, each.seconds) == 0)
            largest = &each;
    }
    return {seconds / largest->seconds, largest->name};
}

} // namespace Tarn

std::string Orla::VValueTrait<Tarn::Moment>::Text(const Tarn::Moment& moment)
{
    switch (moment.kind) {
    case Tarn::Moment::Kind::None:
        break;
    case Tarn::Moment::Kind::Number:
        return moment.number.text();
    case Tarn::Moment::Kind::Instant:
        return Tarn::instantText(moment.seconds());
    }
    return {};
}

bool Orla::VValueTrait<Tarn::Moment>::setValueFromText(Tarn::Moment& moment, const std::string& text)
{
    const std::string_view trimmed = Tarn::withoutBlanks(text);
    if (trimmed.empty())
        moment = {};
    else if (const auto number = Tarn::Duration::read(trimmed))
        moment = {Tarn::Moment::Kind::Number, *number};
    else if (const auto instant = Tarn::InstantReader{trimmed}.read())
        moment = {Tarn::Moment::Kind::Instant, {Tarn::rounded(*instant), {}}};
    else
        return false;
    return true;
}

namespace {

// Returns NaN for nothing.
double momentSeconds(const Tarn::Moment& moment)
{
    return moment.kind == Tarn::Moment::Kind::None ? std::numeric_limits<double>::quiet_NaN() : moment.seconds();
}

const Orla::VValueType<Tarn::Moment> momentType{"moment", "2026-01-31T06:00:00Z"};
const Orla::VValueComponents momentParts{typeid(Tarn::Moment), {Orla::component<momentSeconds>("seconds")}};

} // namespace
