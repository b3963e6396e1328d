#include <fathom/Range.hpp>

#include <fathom/VMemberValue.hpp>

#include <trellis/VTypeLabel.hpp>

#include <loam/Numbers.hpp>
#include <loam/StringUtil.hpp>

#include <string_view>

namespace Orla {

Range::~Range() = default;

std::string VValueTrait<Range>::Text(const Range& range)
{
    char text[2 * Loam::numberTextSize + 1];
    char* const last = text + sizeof text;
    char* end = Loam::writeNumber(text, last, range.begin);
    *end++ = ':';
    end = Loam::writeNumber(end, last, range.end);
    return std::string(text, end);
}

bool VValueTrait<Range>::setValueFromText(Range& range, const std::string& text)
{
    const char separator = text.find(':') != std::string::npos ? ':' : ',';
    const std::string_view whole = text;
    if (!Loam::readNumber(range.begin, whole.substr(0, whole.find(separator))))
        return false;
    return Loam::readNumber(range.end, Loam::StringUtil::afterLast(whole, separator));
}

template class FATHOM_TEMPLATE VTypedValueBase<Range>;
template class FATHOM_TEMPLATE VValue<Range>;
template class FATHOM_TEMPLATE TypedValueCreator<Range>;
template class FATHOM_TEMPLATE VValueParameter<Range>;
template class FATHOM_TEMPLATE TypedSlot<Range>;

namespace {

const VTypeLabel rangeLabel{typeid(Range), "range", "4.5:10"};
const VValueComponents rangeComponents{typeid(Range),
                                       {VMemberValue<Range, double, &Range::begin>::component("begin"),
                                        VMemberValue<Range, double, &Range::end>::component("end")}};

} // namespace

} // namespace Orla
