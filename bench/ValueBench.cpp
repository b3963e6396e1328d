// Creating values by name and text, and copying, comparing and assigning them
// through their base class, compared with the minimum that does the same: one virtual
// call, one allocation.

#include <fathom/Double.hpp>
#include <fathom/VTime.hpp>

#include <benchmark/benchmark.h>

#include <charconv>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <unordered_map>

using namespace Orla;

namespace {

class PlainValue {
public:
    virtual ~PlainValue() = default;
    virtual std::unique_ptr<PlainValue> copy() const = 0;
    virtual bool isDifferentFrom(const PlainValue& other) const = 0;
    virtual bool assign(const PlainValue& other) = 0;
    virtual bool read(std::string_view text) = 0;
};

class PlainDouble final : public PlainValue {
public:
    std::unique_ptr<PlainValue> copy() const override { return std::make_unique<PlainDouble>(*this); }

    bool isDifferentFrom(const PlainValue& other) const override
    {
        return typeid(other) != typeid(PlainDouble) || static_cast<const PlainDouble&>(other).value != value;
    }

    bool assign(const PlainValue& other) override
    {
        if (typeid(other) != typeid(PlainDouble))
            return false;
        value = static_cast<const PlainDouble&>(other).value;
        return true;
    }

    bool read(std::string_view text) override
    {
        return std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
    }

    double value = 0;
};

class PlainThree final : public PlainValue {
public:
    std::unique_ptr<PlainValue> copy() const override { return std::make_unique<PlainThree>(*this); }
    bool isDifferentFrom(const PlainValue&) const override { return true; }
    bool assign(const PlainValue&) override { return false; }

    bool read(std::string_view text) override
    {
        const char* place = text.data();
        const char* const end = place + text.size();
        for (double& value : values) {
            const auto result = std::from_chars(place, end, value);
            if (result.ec != std::errc())
                return false;
            place = result.ptr == end ? end : result.ptr + 1;
        }
        return true;
    }

    double values[3] = {};
};

struct StringHash : std::hash<std::string_view> {
    using is_transparent = void;
};

using PlainCreators =
    std::unordered_map<std::string, std::function<std::unique_ptr<PlainValue>()>, StringHash, std::equal_to<>>;

const PlainCreators& plainCreators()
{
    static const PlainCreators creators{
        {"double", [] { return std::make_unique<PlainDouble>(); }},
        {"three", [] { return std::make_unique<PlainThree>(); }},
        {"char", nullptr},
        {"string", nullptr},
        {"Range", nullptr},
    };
    return creators;
}

void create(benchmark::State& state, std::string_view type, const std::string& text)
{
    for (auto _ : state) {
        bool ok = false;
        benchmark::DoNotOptimize(VValueCreator::createValue(type, text, ok));
    }
}

void createPlain(benchmark::State& state, std::string_view type, const std::string& text)
{
    for (auto _ : state) {
        const std::unique_ptr<PlainValue> value = plainCreators().find(type)->second();
        benchmark::DoNotOptimize(value->read(text));
        benchmark::DoNotOptimize(value.get());
    }
}

void createDouble(benchmark::State& state)
{
    create(state, "double", "-271.8281828459045");
}

void createDoublePlain(benchmark::State& state)
{
    createPlain(state, "double", "-271.8281828459045");
}

// A time has four numbers; the plain version reads three and skips nothing.
void createTime(benchmark::State& state)
{
    create(state, "VTime", "5.25[0.125,10.5]@1.75");
}

void createThreePlain(benchmark::State& state)
{
    createPlain(state, "three", "5.25,0.125,10.5");
}

void copyValue(benchmark::State& state)
{
    const StrongPtr<VValueBase> value(new VValue<double>(2.5));
    for (auto _ : state)
        benchmark::DoNotOptimize(value->copy());
}

void copyPlain(benchmark::State& state)
{
    const std::unique_ptr<PlainValue> value = std::make_unique<PlainDouble>();
    for (auto _ : state)
        benchmark::DoNotOptimize(value->copy());
}

void compareValues(benchmark::State& state)
{
    const StrongPtr<VValueBase> a(new VValue<double>(2.5));
    const StrongPtr<VValueBase> keep = a->copy();
    const WeakPtrImpl<VValueBase> other = keep;
    for (auto _ : state)
        benchmark::DoNotOptimize(a->isDifferentFrom(other));
}

void comparePlain(benchmark::State& state)
{
    const std::unique_ptr<PlainValue> a = std::make_unique<PlainDouble>();
    const std::unique_ptr<PlainValue> b = a->copy();
    for (auto _ : state)
        benchmark::DoNotOptimize(a->isDifferentFrom(*b));
}

void assignValue(benchmark::State& state)
{
    const StrongPtr<VValueBase> a(new VValue<double>(2.5));
    const StrongPtr<VValueBase> b = a->copy();
    const WeakPtrImpl<VValueBase> other = b;
    for (auto _ : state)
        benchmark::DoNotOptimize(a->getValueFrom(other));
}

void assignPlain(benchmark::State& state)
{
    const std::unique_ptr<PlainValue> a = std::make_unique<PlainDouble>();
    const std::unique_ptr<PlainValue> b = a->copy();
    for (auto _ : state)
        benchmark::DoNotOptimize(a->assign(*b));
}

BENCHMARK(createDouble);
BENCHMARK(createDoublePlain);
BENCHMARK(createTime);
BENCHMARK(createThreePlain);
BENCHMARK(copyValue);
BENCHMARK(copyPlain);
BENCHMARK(compareValues);
BENCHMARK(comparePlain);
BENCHMARK(assignValue);
BENCHMARK(assignPlain);

} // namespace
