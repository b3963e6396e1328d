#include <fathom/ColorTypes.hpp>

#include <trellis/VTypeLabel.hpp>

#include <loam/Numbers.hpp>
#include <loam/Scanner.hpp>

namespace Orla {

std::string VValueTrait<Gyre::rgba_float_t>::Text(const Gyre::rgba_float_t& colour)
{
    const auto text = [](float component) { return Loam::formatG(static_cast<double>(component)); };
    return "(" + text(colour.r) + "," + text(colour.g) + "," + text(colour.b) + "," + text(colour.a) + ")";
}

// Reads the scanf format " ( %g, %g, %g, %g )". Like scanf, ignores what follows the last
// number.
bool VValueTrait<Gyre::rgba_float_t>::setValueFromText(Gyre::rgba_float_t& colour, const std::string& text)
{
    colour = {1, 1, 1, 1};
    Loam::Scanner scanner(text);
    scanner.blanks().literal('(');
    int read = 0;
    for (float* component : {&colour.r, &colour.g, &colour.b, &colour.a}) {
        if (read > 0)
            scanner.literal(',');
        if (!scanner.number(*component))
            break;
        ++read;
    }
    return read > 1;
}

namespace {

const VTypeLabel colorTypesLabel{typeid(Gyre::rgba_float_t), "colour", "(1,0.5,0,1)"};

} // namespace

} // namespace Orla
