#include <fathom/MultiRange.hpp>

#include <fathom/RegisteredName.hpp>
#include <fathom/VConnectionTypeColors.hpp>

#include <trellis/VTypeLabel.hpp>

#include <loam/Numbers.hpp>

#include <cstdio>

namespace Orla {

std::string VValueTrait<Gyre::MultiRange>::Text(const Gyre::MultiRange& range)
{
    if (range.empty())
        return {};
    return "[" + Loam::formatF(*range.begin()) + ";" + Loam::formatF(*(range.end() - 1)) + "]";
}

bool VValueTrait<Gyre::MultiRange>::setValueFromText(Gyre::MultiRange& range, const std::string& text)
{
    range = Gyre::MultiRange(text);
    return true;
}

void speak(const Gyre::MultiRange& range, const char* name)
{
    std::printf(range.empty() ? "%s: not empty MultiRange\n" : "%s: empty MultiRange\n", name);
}

namespace {

const RegisteredName multiRangeName{typeid(Gyre::MultiRange), "MultiRange"};
const VTypeLabel multiRangeLabel{typeid(Gyre::MultiRange), "list of ranges"};
const bool multiRangeColourIsSet = (VConnectionTypeColors::set(typeid(Gyre::MultiRange), "#8080FF"), true);

} // namespace

bool VValueTrait<Gyre::MultiRange>::TypenameInitialized = true;

} // namespace Orla
