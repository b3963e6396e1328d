// A client library, built once per name CLIENT. It defines its own value and object
// types, a type that every client defines, and different types under names that every
// client claims.

#include <fathom/Double.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VMemberValue.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VValueType.hpp>

#include <trellis/VObjectCreator.hpp>

#include <string>

#define TEXT_OF(name) #name
#define TEXT(name) TEXT_OF(name)
#define JOIN_NAMES(a, b) a##b
#define JOIN(a, b) JOIN_NAMES(a, b)

namespace Shared {

/// Represents a type from a header that all clients include.
struct __attribute__((visibility("default"))) Tally {
    int count = 0;

    friend bool operator==(const Tally&, const Tally&) = default;
};

} // namespace Shared

namespace CLIENT {

struct JOIN(CLIENT, Value) {
    double metres = 0;

    friend bool operator==(const JOIN(CLIENT, Value) &, const JOIN(CLIENT, Value) &) = default;
};

using Value = JOIN(CLIENT, Value);

} // namespace CLIENT

template<>
struct Orla::VValueTrait<Shared::Tally> {
    static std::string Text(const Shared::Tally& tally) { return VValueTrait<int>::Text(tally.count); }

    static bool setValueFromText(Shared::Tally& tally, const std::string& text)
    {
        return VValueTrait<int>::setValueFromText(tally.count, text);
    }
};

template<>
struct Orla::VValueTrait<CLIENT::Value> {
    static std::string Text(const CLIENT::Value& value) { return VValueTrait<double>::Text(value.metres) + "m"; }

    static bool setValueFromText(CLIENT::Value& value, const std::string& text)
    {
        return VValueTrait<double>::setValueFromText(value.metres, text);
    }
};

namespace CLIENT {

namespace {

using Preferences = Orla::StrongPtr<Orla::VCreationPreferences, Orla::InterfaceBase>;

/// Writes the count that it reads plus one, and reports the number that it sees.
class Counter : public Orla::VObject, public Orla::TimeDependent {
public:
    Counter(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", Preferences(new Orla::VCreationPreferences("default", "local")),
                        Orla::VTime{0.5}}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        const double metres = m_value.value(pool).metres + getTime(pool, 0, Orla::Range{});
        return m_counted(pool) << Shared::Tally{m_tally.value(pool).count + 1}
               && m_report(pool) << TEXT(CLIENT) " sees " + Orla::VValueTrait<double>::Text(metres);
    }

private:
    Orla::TypedSlot<Value> m_value{this, "value", Value{1}, 0};
    Orla::TypedSlot<Shared::Tally> m_tally{this, "tally", Shared::Tally{}, 0};
    Orla::VOutput<Shared::Tally> m_counted{this, "counted", Shared::Tally{}};
    Orla::VOutput<std::string> m_report{this, "report", ""};
};

/// An object type under a name that every client claims.
class Disputed : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest&, double) override { return true; }
};

/// A value type under a name that every client claims.
class DisputedCreator : public Orla::VValueCreator {
public:
    DisputedCreator() : VValueCreator{typeid(Disputed)} { registerCreator(this, "disputed"); }

    Orla::StrongPtr<Orla::VValueBase> create(const std::string&, bool& ok) override
    {
        ok = true;
        return Loam::makeStrong<Orla::VValue<Value>>();
    }
};

const Orla::VValueType<Shared::Tally> tallyType;
const Orla::VValueType<Value> valueType{TEXT(CLIENT) " label"};
const Orla::VValueComponents components{typeid(Value),
                                        {Orla::VMemberValue<Value, double, &Value::metres>::component("metres")}};
const Orla::VObjectType<Counter> counterType{TEXT(CLIENT) "Counter"};
const Orla::VObjectType<Disputed> disputedType{"Disputed"};
const DisputedCreator disputedCreator;

} // namespace

} // namespace CLIENT
