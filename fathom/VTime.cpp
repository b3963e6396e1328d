#include <fathom/VTime.hpp>

#include <fathom/VMemberValue.hpp>

#include <trellis/VTypeLabel.hpp>

#include <loam/Numbers.hpp>
#include <loam/StringUtil.hpp>

#include <cmath>
#include <string_view>

namespace Orla {

VTime::VTime(double t) : time{t}, range{t, t}, dt{0}
{
}

VTime::VTime(double t, double begin, double end) : time{t}, range{begin, end}, dt{end - begin}
{
}

VTime::VTime(double t, double begin, double end, double step, const std::string& text1, const std::string& text2,
             const std::string& text3)
    : time{t}, range{begin, end}, dt{step}, info1{text1}, info2{text2}, info3{text3}
{
}

VTime::VTime(double t, const VTime& like, bool cyclic)
    : time{t}, range{like.range}, dt{like.dt}, info1{like.info1}, info2{like.info2}, info3{like.info3}
{
    if (range.begin > t)
        time = cyclic || range.begin > range.end ? range.end : range.begin;
    else if (t > range.end)
        time = cyclic ? range.begin : range.end;
}

VTime::~VTime() = default;

// Written so that NaN, which compares false with everything, counts as no step.
bool VTime::isContinuous() const noexcept
{
    return !(dt < 0 || dt > 0);
}

// Wraps into [0, N) for the N valid steps. The multiple of N is added and rounded up, so steps
// at and below -N stay negative; a change here would change saved networks.
double VTime::wrapped(double step) const noexcept
{
    const double count = maxTsteps() + 1;
    return std::fmod((std::ceil(step / count) + 1) * count + step, count);
}

double VTime::Tstep(double t) const noexcept
{
    return isContinuous() ? 0 : std::floor((t - range.begin) / dt + 0.5);
}

double VTime::maxTsteps() const noexcept
{
    return Tstep(range.end);
}

double VTime::Tdiscrete(double n) const noexcept
{
    return isContinuous() ? range.begin : range.begin + dt * wrapped(n);
}

double VTime::Tdiscretized(double t) const noexcept
{
    return isContinuous() ? t : range.begin + dt * wrapped(Tstep(t));
}

void VTime::stepBy(double steps) noexcept
{
    time = isContinuous() ? range.begin : wrapped(Tstep(time) + steps) * dt + range.begin;
}

VTime& VTime::operator++(int) noexcept
{
    stepBy(1);
    return *this;
}

VTime& VTime::operator--(int) noexcept
{
    stepBy(-1);
    return *this;
}

std::string VValueTrait<VTime>::Text(const VTime& time)
{
    char text[4 * Loam::numberTextSize + 4];
    char* const last = text + sizeof text;
    char* end = Loam::writeNumber(text, last, time.time);
    *end++ = '[';
    end = Loam::writeNumber(end, last, time.range.begin);
    *end++ = ',';
    end = Loam::writeNumber(end, last, time.range.end);
    *end++ = ']';
    *end++ = '@';
    end = Loam::writeNumber(end, last, time.dt);
    return std::string(text, end);
}

bool VValueTrait<VTime>::setValueFromText(VTime& time, const std::string& text)
{
    if (!Loam::readNumber(time.time, text))
        return false;
    const std::string_view begin = Loam::StringUtil::afterFirst(text, '[');
    if (begin.empty()) {
        time.range = Range{time.time, time.time};
        time.dt = 0;
        return true;
    }
    Loam::readNumber(time.range.begin, begin);
    const std::string_view end = Loam::StringUtil::afterFirst(begin, ',');
    if (end.empty()) {
        time.range.end = time.range.begin;
        time.dt = 0;
        return true;
    }
    Loam::readNumber(time.range.end, end);
    const std::string_view closed = Loam::StringUtil::afterFirst(end, ']');
    const std::string_view step = Loam::StringUtil::afterFirst(closed, '@');
    if (closed.empty() || step.empty())
        time.dt = time.range.end - time.range.begin;
    else
        Loam::readNumber(time.dt, step);
    return true;
}

template class FATHOM_TEMPLATE VTypedValueBase<VTime>;
template class FATHOM_TEMPLATE VValue<VTime>;
template class FATHOM_TEMPLATE TypedValueCreator<VTime>;
template class FATHOM_TEMPLATE VValueParameter<VTime>;
template class FATHOM_TEMPLATE TypedSlot<VTime>;

namespace {

const VTypeLabel timeLabel{typeid(VTime), "time", "0.5[0,1]@0.1"};
const VValueComponents timeComponents{typeid(VTime),
                                      {VMemberValue<VTime, double, &VTime::time>::component("time"),
                                       VMemberValue<VTime, Range, &VTime::range>::component("range"),
                                       VMemberValue<VTime, double, &VTime::dt>::component("dt")}};

} // namespace

} // namespace Orla
