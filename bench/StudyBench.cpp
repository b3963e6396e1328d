// Studies: the cases per second of a cheap network in one and two threads, what the first of
// several processes does per case, and the rows per second of the table.

#include "Adder.hpp"

#include <tarn/network/Session.hpp>
#include <tarn/run/TableWriter.hpp>
#include <tarn/study/CaseOrder.hpp>
#include <tarn/study/CaseRecord.hpp>
#include <tarn/study/Study.hpp>

#include <loam/OutputFile.hpp>

#include <trellis/VObjectCreator.hpp>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr char Type[] = "BenchAdder";

// Returns a chain whose length makes a case cheap.
std::string chainOf(int count)
{
    std::string text = "format = 1\n";
    for (int i = 0; i < count; ++i) {
        text += "\n[[object]]\nname = \"adder" + std::to_string(i) + "\"\ntype = \"" + Type + "\"\n";
        if (i > 0)
            text += "connect.b = \"adder" + std::to_string(i - 1) + ".sum\"\n";
    }
    return text + "\n[[column]]\ntitle = \"sum\"\nvalue = \"adder" + std::to_string(count - 1) + ".sum\"\n";
}

Tarn::Sweep sweepOf(int count)
{
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i)
        texts.push_back(std::to_string(i));
    Tarn::Sweep sweep;
    if (!sweep.add("adder0.a", std::move(texts)))
        std::abort();
    return sweep;
}

void evaluateCases(benchmark::State& state)
{
    constexpr int Cases = 2000;
    const Orla::VObjectType<Orla::Adder> type{Type};
    const Tarn::Session session = Tarn::Session::read(chainOf(static_cast<int>(state.range(1))), "chain", ".");
    const Tarn::Study study{session, sweepOf(Cases)};
    for (auto _ : state) {
        std::uint64_t failures = 0;
        study.run({.jobs = static_cast<unsigned>(state.range(0))},
                  [&](const Tarn::CaseResult& result) { failures += result.hasFailed ? 1 : 0; });
        if (failures > 0)
            state.SkipWithError("a case failed");
    }
    state.SetItemsProcessed(state.iterations() * Cases);
}

// The work of the first process per case of another one: it reads the record, brings the results
// into order and writes a row.
void acceptCases(benchmark::State& state)
{
    constexpr std::uint64_t Cases = 1000;
    const auto columns = static_cast<std::size_t>(state.range(0));
    std::vector<std::string> records;
    for (std::uint64_t i = 0; i < Cases; ++i) {
        Tarn::CaseResult result{.number = i};
        result.rows.emplace_back(columns, "1198.281858911301");
        records.push_back(recordOf(result));
    }
    for (auto _ : state) {
        Loam::OutputFile output{"/dev/null"};
        Tarn::TableWriter table{output};
        Tarn::CaseOrder order{[&](const Tarn::CaseResult& result) {
            std::vector<std::string> fields{std::to_string(result.number), "0"};
            for (const auto& cell : result.rows[0])
                fields.push_back(*cell);
            table.writeRow(fields);
        }};
        for (const std::string& record : records)
            order.add(*Tarn::resultOf(record));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Cases));
    state.counters["bytes"] = static_cast<double>(records.back().size());
}

void writeRows(benchmark::State& state)
{
    const std::vector<std::string> row(static_cast<std::size_t>(state.range(0)), "1198.281858911301");
    Loam::OutputFile output{"/dev/null"};
    Tarn::TableWriter table{output};
    for (auto _ : state)
        table.writeRow(row);
    state.SetItemsProcessed(state.iterations());
}

} // namespace

// Threads; objects per case.
BENCHMARK(evaluateCases)->ArgsProduct({{1, 2}, {20, 200, 2000}})->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(acceptCases)->Arg(8)->Unit(benchmark::kMicrosecond);
BENCHMARK(writeRows)->Arg(8);
