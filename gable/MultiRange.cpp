#include <gable/MultiRange.hpp>

#include <loam/Numbers.hpp>

#include <utility>

namespace Gyre {

MultiRange::MultiRange(std::vector<double> bounds) noexcept : m_bounds{std::move(bounds)}
{
}

MultiRange::MultiRange(std::initializer_list<double> bounds) : m_bounds(bounds)
{
}

MultiRange::MultiRange(const std::string& text)
{
    const char* place = Loam::skipBlanks(text.data(), text.data() + text.size());
    const char* const end = text.data() + text.size();
    if (place != end && *place == '[')
        ++place;
    double bound = 0;
    while (const char* next = Loam::readNumber(place, end, bound)) {
        m_bounds.push_back(bound);
        place = Loam::skipBlanks(next, end);
        if (place == end || (*place != ';' && *place != ','))
            break;
        ++place;
    }
}

} // namespace Gyre
