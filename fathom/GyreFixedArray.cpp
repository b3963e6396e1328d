#include <fathom/GyreFixedArray.hpp>

#include <fathom/TripleText.hpp>

#include <trellis/VTypeLabel.hpp>

#include <loam/StringUtil.hpp>

#include <vector>

namespace Orla {

std::string Text3(const Gyre::FixedArray<double, 3>& numbers)
{
    return writeTriple('{', numbers, '}');
}

std::string VValueTrait<Gyre::FixedArray<int, 3>>::Text(const Gyre::FixedArray<int, 3>& numbers)
{
    using Number = VValueTrait<int>;
    return "[" + Number::Text(numbers[0]) + "," + Number::Text(numbers[1]) + "," + Number::Text(numbers[2]) + "]";
}

bool VValueTrait<Gyre::FixedArray<int, 3>>::setValueFromText(Gyre::FixedArray<int, 3>& numbers, const std::string& text)
{
    std::vector<std::string> pieces;
    if (Loam::StringUtil::split(text, pieces, ',', true) != 3 || pieces[0].empty())
        return false;
    pieces[0].erase(0, 1);
    for (const std::string& piece : pieces) {
        if (!VValueTrait<int>::setValueFromText(numbers[0], piece))
            return false;
    }
    return true;
}

namespace {

const VTypeLabel fixedArrayLabel{typeid(Gyre::FixedArray<int, 3>), "integer triple"};

} // namespace

} // namespace Orla
