#include <tarn/standard/TimeStep.hpp>

#include <fathom/VComponent.hpp>
#include <fathom/VValueType.hpp>

#include <loam/Numbers.hpp>

#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>

namespace Tarn {

namespace {

struct Component {
    char letter;
    double seconds;
};

constexpr Component weeks[] = {{'W', 604800}};
constexpr Component days[] = {{'D', 86400}};
constexpr Component partsOfDays[] = {{'H', 3600}, {'M', 60}, {'S', 1}};

// Reads an ISO 8601 duration after its "P".
class DurationReader {
public:
    explicit DurationReader(std::string_view text) noexcept : m_rest{text} {}

    std::optional<double> seconds() noexcept
    {
        readAll(weeks);
        if (m_count == 0) {
            readAll(days);
            if (m_rest.starts_with('T')) {
                m_rest.remove_prefix(1);
                const int before = m_count;
                readAll(partsOfDays);
                if (m_count == before)
                    return std::nullopt;
            }
        }
        return m_rest.empty() && m_count > 0 ? std::optional{m_seconds} : std::nullopt;
    }

private:
    template<std::size_t Size>
    void readAll(const Component (&components)[Size]) noexcept
    {
        for (const Component& component : components)
            read(component);
    }

    // Reads the component if it comes next.
    void read(const Component& component) noexcept
    {
        const std::size_t size = m_rest.find_first_not_of("0123456789.");
        if (m_hasDecimals || size == 0 || size == std::string_view::npos || m_rest[size] != component.letter
            || m_rest.front() == '.' || m_rest[size - 1] == '.')
            return;
        double number = 0;
        if (Loam::readNumber(m_rest.data(), m_rest.data() + size, number) != m_rest.data() + size)
            return;
        m_hasDecimals = m_rest.substr(0, size).find('.') != std::string_view::npos;
        m_rest.remove_prefix(size + 1);
        m_seconds += number * component.seconds;
        ++m_count;
    }

    std::string_view m_rest;
    double m_seconds = 0;
    int m_count = 0;
    bool m_hasDecimals = false;
};

std::optional<Duration> lengthOf(const std::string& text) noexcept
{
    if (const auto number = Duration::read(text))
        return number;
    const std::size_t begin = text.find_first_not_of(" \t\n\r\f\v");
    if (begin == std::string::npos || text[begin] != 'P')
        return std::nullopt;
    const std::size_t end = text.find_last_not_of(" \t\n\r\f\v") + 1;
    const auto seconds = DurationReader{std::string_view(text).substr(begin + 1, end - begin - 1)}.seconds();
    return seconds ? std::optional{Duration::inLargestUnit(*seconds)} : std::nullopt;
}

} // namespace

} // namespace Tarn

std::string Orla::VValueTrait<Tarn::TimeStep>::Text(const Tarn::TimeStep& step)
{
    return step.isGiven() ? step.length.text() : std::string();
}

bool Orla::VValueTrait<Tarn::TimeStep>::setValueFromText(Tarn::TimeStep& step, const std::string& text)
{
    if (text.find_first_not_of(" \t\n\r\f\v") == std::string::npos) {
        step = {};
        return true;
    }
    const auto length = Tarn::lengthOf(text);
    if (!length || !(length->amount > 0) || !std::isfinite(length->seconds()))
        return false;
    step = {*length};
    return true;
}

namespace {

// Returns NaN for nothing.
double stepSeconds(const Tarn::TimeStep& step)
{
    return step.isGiven() ? step.length.seconds() : std::numeric_limits<double>::quiet_NaN();
}

const Orla::VValueType<Tarn::TimeStep> timeStepType{"time step", "6 h"};
const Orla::VValueComponents timeStepParts{typeid(Tarn::TimeStep), {Orla::component<stepSeconds>("seconds")}};

} // namespace
