// An object library whose types describe their inputs, some of them wrongly.

#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/String.hpp>
#include <fathom/VEnum.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VStringList.hpp>

#include <trellis/VObjectCreator.hpp>

namespace {

using Orla::describe;
using Orla::StrongPtr;
using Orla::TypedSlot;
using Orla::VOutput;
using OneOf = StrongPtr<Orla::StringSelection, Loam::StringList>;

class Heater final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        m_heat(request.valuePool()) <<= m_power.value(request.valuePool());
        return true;
    }

private:
    TypedSlot<double> m_power{
        this, "power", 5.0, describe("The power of the heater.").in("kW").from(0).below(10).softLimits(1, 5).step(0.5)};
    TypedSlot<Orla::Range> m_night{this, "night", Orla::Range{22, 30},
                                   describe("When the power is halved.").in("h").from(0).to(48)};
    TypedSlot<Orla::Enum> m_mode{this, "mode", Orla::Enum{"constant", "curve", "off"}, describe("How it heats.")};
    TypedSlot<std::string> m_curve{this, "curve", "",
                                   describe("The power over time.").asInputFile("csv", "txt").onlyIf("mode", "curve")};
    TypedSlot<OneOf> m_room{this, "room", Loam::makeStrong<Orla::StringSelection>(',', "hall,attic,cellar", "hall"),
                            describe("The room that it heats.")};
    TypedSlot<int> m_serial{this, "serial", 0, describe("A number of the maker.").hidden()};
    TypedSlot<double> m_plain{this, "plain", 0.0, 3};
    VOutput<double> m_heat{this, "heat", 0.0, describe("The heat that it gives.").in("kW")};
    VOutput<double> m_sum{this, "sum", 0.0, describe("The heat so far.").asPrivateState()};
};

// Its initial value is outside its limits.
class Overheated final : public Orla::VObject {
public:
    using VObject::VObject;
    bool update(Orla::VRequest&, double) override { return true; }

private:
    TypedSlot<double> m_power{this, "power", 11.0, describe("The power of the heater.").in("kW").to(10)};
};

class MissingCondition final : public Orla::VObject {
public:
    using VObject::VObject;
    bool update(Orla::VRequest&, double) override { return true; }

private:
    TypedSlot<double> m_power{this, "power", 1.0, describe("The power of the heater.").onlyIf("mode", "on")};
};

class SelfCondition final : public Orla::VObject {
public:
    using VObject::VObject;
    bool update(Orla::VRequest&, double) override { return true; }

private:
    TypedSlot<double> m_power{this, "power", 1.0, describe("The power of the heater.").onlyIf("power", "1")};
};

class RefusedCondition final : public Orla::VObject {
public:
    using VObject::VObject;
    bool update(Orla::VRequest&, double) override { return true; }

private:
    TypedSlot<double> m_power{this, "power", 1.0, describe("The power of the heater.")};
    TypedSlot<double> m_night{this, "night", 1.0, describe("The power at night.").onlyIf("power", "low")};
};

class Marked final : public Orla::VObject {
public:
    using VObject::VObject;
    bool update(Orla::VRequest&, double) override { return true; }

private:
    TypedSlot<double> m_input{this, "in", 1.0, describe("A <script>alert(1)</script> & \x1b[31m \"quoted\".\n\x7f")};
};

const Orla::VObjectType<Heater> heaterType{"Heater", Orla::describeType("Heats a room.")
                                                         .details("It has a power.\n\nAt night it saves energy.")
                                                         .category("Houses")
                                                         .keywords("warmth", "radiator")
                                                         .page("https://example.org/heater")};
const Orla::VObjectType<Overheated> overheatedType{"Overheated"};
const Orla::VObjectType<MissingCondition> missingConditionType{"MissingCondition"};
const Orla::VObjectType<SelfCondition> selfConditionType{"SelfCondition"};
const Orla::VObjectType<RefusedCondition> refusedConditionType{"RefusedCondition"};
const Orla::VObjectType<Marked> markedType{"Marked", Orla::describeType("Has markup: <b>\x1b[1m</b>.")};

} // namespace
