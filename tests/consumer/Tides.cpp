#include <fathom/Double.hpp>
#include <fathom/TypedSlot.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VTime.hpp>
#include <fathom/VValueType.hpp>

#include <trellis/VObjectCreator.hpp>

#include <string>

namespace Harbour {

/// The zero of a gauge, in metres above chart datum.
struct Gauge {
    double zero = 0;

    friend bool operator==(const Gauge&, const Gauge&) = default;
};

/// Rises by 2 metres per unit of time, starting at the beginning of the interval.
class Tide : public Orla::VObject {
public:
    Tide(const std::string& name, int level,
         const Orla::StrongPtr<Orla::VCreationPreferences, Orla::InterfaceBase>& preferences)
        : VObject{name, level, preferences}
        , m_time{this, "time", Orla::VTime{}, 0}
        , m_gauge{this, "gauge", Gauge{}, 0}
        , m_height{this, "height", 0.0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const Orla::VTime time = m_time.value(request.valuePool());
        const Gauge gauge = m_gauge.value(request.valuePool());
        return m_height(request.valuePool()) << 2 * (time.time - time.range.begin) - gauge.zero;
    }

private:
    Orla::TypedSlot<Orla::VTime> m_time;
    Orla::TypedSlot<Gauge> m_gauge;
    Orla::VOutput<double> m_height;
};

} // namespace Harbour

template<>
struct Orla::VValueTrait<Harbour::Gauge> {
    static std::string Text(const Harbour::Gauge& gauge) { return VValueTrait<double>::Text(gauge.zero); }

    static bool setValueFromText(Harbour::Gauge& gauge, const std::string& text)
    {
        return VValueTrait<double>::setValueFromText(gauge.zero, text);
    }
};

namespace {

const Orla::VValueType<Harbour::Gauge> gaugeType;
const Orla::VObjectType<Harbour::Tide> tideType{"Tide"};

} // namespace
