#include "Levels.hpp"

#include <fathom/MultiRange.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <loam/Numbers.hpp>

#include <cmath>
#include <stdexcept>
#include <string>

namespace Rain {

using Orla::describe;

std::vector<double> levelsOf(const Gyre::MultiRange& range)
{
    if (range.empty() || range.size() > mostLevels)
        throw std::runtime_error{"found " + std::to_string(range.size()) + " levels, expected from 1 to "
                                 + std::to_string(mostLevels) + ", such as [500;1000;2000]"};
    for (std::size_t i = 0; i < range.size(); ++i) {
        if (!std::isfinite(range[i]) || (i > 0 && range[i] <= range[i - 1]))
            throw std::runtime_error{"found the level " + Loam::numberText(range[i])
                                     + (i > 0 ? " after " + Loam::numberText(range[i - 1]) : std::string())
                                     + ", expected finite numbers in increasing order"};
    }
    return {range.begin(), range.end()};
}

/// Gives its levels to all objects that classify the same values, such as colours and isolines:
/// one input changes all of them. Fails unless the levels are finite and in increasing order.
class Levels : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const Gyre::MultiRange levels = m_given.value(request.valuePool());
        levelsOf(levels);
        m_levels(request.valuePool()) <<= levels;
        return true;
    }

private:
    Orla::TypedSlot<Gyre::MultiRange> m_given{this, "levels", Gyre::MultiRange{500, 1000, 2000},
                                              describe("The levels between classes, finite and in increasing order.")};
    Orla::VOutput<Gyre::MultiRange> m_levels{this, "levels", Gyre::MultiRange{}, describe("The same levels.")};
};

} // namespace Rain

namespace {

const Orla::VObjectType<Rain::Levels> levelsType{"Levels",
                                                 Orla::describeType("Gives the same levels to colours and isolines.")
                                                     .category("Grids")
                                                     .keywords("class", "contour")};

} // namespace
