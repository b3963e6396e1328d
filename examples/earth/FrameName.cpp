#include <earth/FrameName.hpp>

#include <fathom/Double.hpp>

#include <cmath>
#include <cstdint>
#include <stdexcept>

namespace Earth {

std::string frameName(const std::string& pattern, double step)
{
    constexpr double MostSteps = 1e15;
    if (!(step >= 0 && step <= MostSteps && step == std::floor(step)))
        throw std::runtime_error{"the step is " + Orla::VValueTrait<double>::Text(step)
                                 + ", expected a whole number, 0 or more"};
    const auto last = pattern.rfind('#');
    if (last == std::string::npos)
        throw std::runtime_error{"the name \"" + pattern + "\" has no \"#\" for the number of the step"};
    const auto before = pattern.find_last_not_of('#', last);
    const std::size_t first = before == std::string::npos ? 0 : before + 1;
    std::string number = std::to_string(static_cast<std::uint64_t>(step));
    if (number.size() < last + 1 - first)
        number.insert(0, last + 1 - first - number.size(), '0');
    return pattern.substr(0, first) + number + pattern.substr(last + 1);
}

} // namespace Earth
