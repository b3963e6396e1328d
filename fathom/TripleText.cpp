#include <fathom/TripleText.hpp>

#include <loam/Numbers.hpp>
#include <loam/StringUtil.hpp>

namespace Orla {

std::string writeTriple(char open, const Gyre::FixedArray<double, 3>& numbers, char close)
{
    char text[3 * Loam::numberTextSize + 4];
    char* const last = text + sizeof text;
    char* end = text;
    *end++ = open;
    for (std::size_t i = 0; i < 3; ++i) {
        if (i > 0)
            *end++ = ',';
        end = Loam::writeNumber(end, last, numbers[i]);
    }
    *end++ = close;
    return std::string(text, end);
}

bool readTriple(Gyre::FixedArray<double, 3>& numbers, std::string_view text, char open)
{
    std::string_view piece = Loam::StringUtil::afterFirst(text, open);
    bool anyRead = Loam::readNumber(numbers[0], piece);
    for (std::size_t i = 1; i < 3; ++i) {
        piece = Loam::StringUtil::afterFirst(piece, ',');
        anyRead |= Loam::readNumber(numbers[i], piece);
    }
    return anyRead;
}

} // namespace Orla
