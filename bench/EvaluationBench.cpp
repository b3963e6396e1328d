// Evaluation in several pools and threads, reading components, and the cost of 100,000
// unrelated objects in the network.

#include "Adder.hpp"

#include <fathom/Action.hpp>
#include <fathom/Double.hpp>
#include <fathom/Range.hpp>
#include <fathom/TimeDependent.hpp>

#include <trellis/VExecutor.hpp>
#include <trellis/VNetwork.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VScheduler.hpp>

#include <benchmark/benchmark.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

using namespace Orla;

namespace {

template<class T, class... Arguments>
StrongPtr<T> announce(Arguments&&... arguments)
{
    auto object = Loam::makeStrong<T>(std::forward<Arguments>(arguments)...);
    VObject::finishCreation(object);
    return object;
}

using Adders = std::vector<StrongPtr<Adder>>;

Adders makeChain(std::int64_t count)
{
    Adders chain;
    for (std::int64_t i = 0; i < count; ++i) {
        chain.push_back(announce<Adder>("adder", 0, nullptr));
        if (i > 0)
            chain.back()->attachOutput(chain[chain.size() - 2]->findOutput("sum"), chain.back()->a.slot(), {});
    }
    return chain;
}

Adders makeFan(std::int64_t count)
{
    Adders fan{announce<Adder>("source", 0, nullptr)};
    for (std::int64_t i = 0; i < count; ++i) {
        fan.push_back(announce<Adder>("reader", 0, nullptr));
        fan.back()->attachOutput(fan.front()->findOutput("sum"), fan.back()->a.slot(), {});
    }
    return fan;
}

StrongPtr<ValuePool> evaluatedPool(const Adders& objects)
{
    StrongPtr<ValuePool> pool(new ValuePool("bench"));
    for (const StrongPtr<Adder>& object : objects)
        VScheduler::schedule(object, 0, pool);
    VScheduler::run(pool);
    return pool;
}

/// Alternates between the pools, so neither benefits from data cached for the other.
void twoPoolsAlternately(benchmark::State& state)
{
    VNetwork network;
    const VNetwork::Scope scope{network};
    const Adders chain = makeChain(state.range(0));
    const StrongPtr<ValuePool> pools[2] = {evaluatedPool(chain), evaluatedPool(chain)};
    double value = 0;
    for (auto _ : state) {
        for (const StrongPtr<ValuePool>& pool : pools) {
            chain.front()->b.set(pool, value += 1);
            VScheduler::run(pool);
        }
    }
    report(state, 2 * chain.size());
}

/// One network; each thread evaluates its own pool. Compare "per_object" for one and two
/// threads: it is the time divided by the objects of all threads.
void poolPerThread(benchmark::State& state)
{
    static VNetwork* network = nullptr;
    static Adders* chain = nullptr;
    if (state.thread_index() == 0) {
        network = new VNetwork;
        const VNetwork::Scope scope{*network};
        chain = new Adders(makeChain(state.range(0)));
    }
    StrongPtr<ValuePool> pool;
    double value = 0;
    for (auto _ : state) {
        if (!pool)
            pool = evaluatedPool(*chain);
        chain->front()->b.set(pool, value += 1);
        VScheduler::run(pool);
    }
    state.counters["per_object"] =
        benchmark::Counter(static_cast<double>(state.range(0)) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    pool.reset();
    if (state.thread_index() == 0) {
        delete chain;
        delete network;
    }
}

class Workers final : public VExecutor {
public:
    explicit Workers(unsigned count)
    {
        for (unsigned i = 0; i < count; ++i)
            m_threads.emplace_back([this] { work(); });
    }
    ~Workers() override
    {
        {
            const std::lock_guard lock{m_mutex};
            m_isOver = true;
        }
        m_changed.notify_all();
        for (std::thread& thread : m_threads)
            thread.join();
    }

    unsigned concurrency() const noexcept override { return static_cast<unsigned>(m_threads.size()); }

    void execute(std::function<void()> task) override
    {
        {
            const std::lock_guard lock{m_mutex};
            m_tasks.push_back(std::move(task));
        }
        m_changed.notify_one();
    }

private:
    void work()
    {
        std::unique_lock lock{m_mutex};
        while (true) {
            m_changed.wait(lock, [this] { return m_isOver || !m_tasks.empty(); });
            if (m_tasks.empty())
                return;
            const auto task = std::move(m_tasks.front());
            m_tasks.pop_front();
            lock.unlock();
            task();
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_tasks;
    std::vector<std::thread> m_threads;
    bool m_isOver = false;
};

void runWithWorkers(benchmark::State& state, const Adders& objects)
{
    Workers workers(static_cast<unsigned>(state.range(1)) - 1);
    const StrongPtr<ValuePool> pool = evaluatedPool(objects);
    double value = 0;
    for (auto _ : state) {
        objects.front()->b.set(pool, value += 1);
        VRequest request(pool);
        VScheduler::run(request, workers);
    }
    report(state, objects.size());
}

void chainWithWorkers(benchmark::State& state)
{
    VNetwork network;
    const VNetwork::Scope scope{network};
    runWithWorkers(state, makeChain(state.range(0)));
}

void fanWithWorkers(benchmark::State& state)
{
    VNetwork network;
    const VNetwork::Scope scope{network};
    runWithWorkers(state, makeFan(state.range(0)));
}

class Source : public VObject {
public:
    using VObject::VObject;
    bool update(VRequest&, double) override { return true; }
    VOutput<Range> range{this, "range", Range{3, 4}};
    VOutput<StrongPtr<VAction>> action{this, "action", Loam::makeStrong<VAction>(1.0)};
};

class Reader : public VObject {
public:
    using VObject::VObject;
    bool update(VRequest& request, double) override
    {
        const StrongPtr<ValuePool>& pool = request.valuePool();
        for (auto _ : *state) {
            double read = begin.value(pool);
            if (both)
                read += end.value(pool);
            benchmark::DoNotOptimize(read);
        }
        return true;
    }
    TypedSlot<double> begin{this, "begin", 0.0, 0};
    TypedSlot<double> end{this, "end", 0.0, 0};
    benchmark::State* state = nullptr;
    bool both = false;
};

/// Reads one or two components of one value during an update.
void readComponents(benchmark::State& state)
{
    VNetwork network;
    const VNetwork::Scope scope{network};
    const auto source = announce<Source>("source", 0, nullptr);
    const auto reader = announce<Reader>("reader", 0, nullptr);
    reader->attachOutput(source->findOutput("range"), reader->begin.slot(), "begin");
    reader->attachOutput(source->findOutput("range"), reader->end.slot(), "end");
    reader->state = &state;
    reader->both = state.range(0) == 2;
    const StrongPtr<ValuePool> pool(new ValuePool("bench"));
    VScheduler::schedule(reader, 0, pool);
    VScheduler::run(pool);
}

class Listener : public VObject {
public:
    using VObject::VObject;
    bool update(VRequest&, double) override { return true; }
    TypedSlot<StrongPtr<VAction>> go{this, "go", nullptr, 0};
};

/// Emits an action and runs its only listener, in a network with other objects.
void emitAction(benchmark::State& state)
{
    VNetwork network;
    const VNetwork::Scope scope{network};
    const Adders others = makeChain(state.range(0));
    const auto source = announce<Source>("source", 0, nullptr);
    const auto listener = announce<Listener>("listener", 0, nullptr);
    listener->attachOutput(source->findOutput("action"), listener->go.slot(), {});
    const StrongPtr<ValuePool> pool(new ValuePool("bench"));
    const auto action = Loam::makeStrong<VAction>(2.0);
    const StrongPtr<VParameter> parameter = source->findOutput("action")->parameter();
    action->emitAction(pool, parameter);
    VScheduler::run(pool); // brings the evaluation order up to date
    for (auto _ : state) {
        action->emitAction(pool, parameter);
        VScheduler::run(pool);
    }
}

class Clock : public VObject {
public:
    using VObject::VObject;
    bool update(VRequest&, double) override { return true; }
    VOutput<VTime> time{this, "time", VTime{}};
};

class Timed : public VObject, public TimeDependent {
public:
    Timed(const std::string& name, int level, const StrongPtr<VCreationPreferences>& preferences)
        : VObject{name, level, preferences}, TimeDependent{"time", "range", nullptr, VTime{}}
    {
    }
    bool update(VRequest&, double) override { return true; }
};

/// Sets up time-dependent objects in one growing network.
void setUpTimeDependent(benchmark::State& state)
{
    for (auto _ : state) {
        VNetwork network;
        const VNetwork::Scope scope{network};
        announce<Clock>("clock", 0, Loam::makeStrong<VCreationPreferences>("default", "GlobalTime"));
        std::vector<StrongPtr<Timed>> objects;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            objects.push_back(Loam::makeStrong<Timed>("timed", 0, nullptr));
        const auto start = std::chrono::steady_clock::now();
        for (const StrongPtr<Timed>& object : objects)
            VObject::finishCreation(object);
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    report(state, static_cast<std::size_t>(state.range(0)));
}

/// Removes the inputs of one object in the order of addition.
void removeInputs(benchmark::State& state)
{
    for (auto _ : state) {
        VNetwork network;
        const VNetwork::Scope scope{network};
        const auto object = announce<Listener>("selector", 0, nullptr);
        std::vector<StrongPtr<VSlot>> slots;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            slots.push_back(object->addParameter(
                std::to_string(i), 0,
                StrongPtr<VParameter>(new VValueParameter<double>(0.0, std::to_string(i), nullptr)), true));
        const auto start = std::chrono::steady_clock::now();
        for (const StrongPtr<VSlot>& slot : slots)
            object->removeParameter(slot);
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    report(state, static_cast<std::size_t>(state.range(0)));
}

BENCHMARK(twoPoolsAlternately)->Arg(10)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(poolPerThread)->Arg(10)->Arg(1000)->ThreadRange(1, 2)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(chainWithWorkers)->Args({1000, 1})->Args({1000, 2})->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(fanWithWorkers)->Args({1000, 1})->Args({1000, 2})->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(readComponents)->Arg(1)->Arg(2);
BENCHMARK(emitAction)->Arg(1)->Arg(100'000);
BENCHMARK(setUpTimeDependent)->Arg(100)->Arg(20'000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(removeInputs)->Arg(1000)->Arg(100'000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
