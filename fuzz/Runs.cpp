#include "Support.hpp"

#include <tarn/network/NetworkParser.hpp>
#include <tarn/network/Session.hpp>
#include <tarn/run/Evaluation.hpp>
#include <tarn/run/TableWriter.hpp>

#include <loam/OutputFile.hpp>

#include <algorithm>
#include <array>
#include <string>

// Evaluates the first steps of a network. A line of "%%" separates it from the events to play.

namespace {

// These types wait, change the process or keep something until it ends.
constexpr std::array Unwanted{"Slow", "Talker", "LocaleSetter", "Clinging", "Hoarder", "FileReader", "Opener"};

bool hasUnwanted(std::string_view text)
{
    Tarn::Faults faults{"network"};
    const Tarn::NetworkFile file = Tarn::parseNetwork(text, faults);
    return std::ranges::any_of(file.objects, [](const auto& object) {
        return std::ranges::find(Unwanted, object.type.text) != Unwanted.end();
    });
}

void run(const std::string& network, std::string_view script)
{
    const Tarn::Session session = Tarn::Session::load(network, {.stepLimit = 3});
    if (!session.faults().empty())
        return;
    Tarn::Context context{session};
    const std::uint64_t steps = *context.stepCount();
    Tarn::Faults faults{"events.toml"};
    context.schedule(Tarn::parseEvents(script, faults));
    Loam::OutputFile output{"/dev/null"};
    Tarn::TableWriter table{output};
    const Orla::VCancellation cancellation;
    const Tarn::EvaluationSummary summary = Tarn::evaluate(session, context, {.table = &table}, cancellation);
    Fuzz::require(summary.steps <= steps, "no step is evaluated twice");
    Fuzz::require(summary.steps == steps || !summary.isFine(), "a run that is fine is complete");
    const Tarn::StatusReport report = context.statuses();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::prepareHost();
    const std::string_view input = Fuzz::textOf(data, size);
    const std::size_t split = input.find("\n%%\n");
    const std::string_view text = input.substr(0, split);
    if (hasUnwanted(text))
        return -1;
    const std::size_t objects = Orla::VManagedObject::count();
    const unsigned long long memory = Loam::ChunkBase::TotalMemsize;
    run(Fuzz::fileWith("network.toml", text), split == std::string_view::npos ? "" : input.substr(split + 4));
    Fuzz::require(Orla::VManagedObject::count() == objects, "a run leaves no objects");
    Fuzz::require(Loam::ChunkBase::TotalMemsize == memory, "a run leaves no arrays");
    return 0;
}
