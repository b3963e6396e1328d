#include <tarn/commands/RunOptions.hpp>

#include <tarn/commands/Commands.hpp>
#include <tarn/network/Session.hpp>
#include <tarn/run/EventPlayer.hpp>
#include <tarn/run/TaskExecutor.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/ReadFile.hpp>

#include <trellis/VNetwork.hpp>

#include <charconv>
#include <system_error>

namespace Tarn {

namespace {

constexpr std::uint64_t MostJobs = 10'000;

} // namespace

std::optional<std::uint64_t> readNumber(const Arguments& arguments, const std::string& option, std::uint64_t least)
{
    const std::optional<std::string> text = arguments.text(option);
    if (!text)
        return std::nullopt;
    std::uint64_t number = 0;
    const char* const end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, number);
    if (error != std::errc{} || stop != end || number < least)
        throw UsageError{"--" + option + "=" + printable(*text) + ": expected a whole number, " + std::to_string(least)
                         + " or more"};
    return number;
}

std::optional<unsigned> readJobs(const Arguments& arguments)
{
    const std::optional<std::uint64_t> jobs = readNumber(arguments, "jobs", 0);
    if (!jobs)
        return std::nullopt;
    if (*jobs > MostJobs)
        throw UsageError{"--jobs=" + std::to_string(*jobs) + ": expected at most " + std::to_string(MostJobs)};
    return *jobs > 0 ? static_cast<unsigned>(*jobs) : TaskExecutor::cores();
}

std::string placeOf(const Arguments& arguments, const std::string& option, const std::string& network)
{
    const std::optional<std::string> name = arguments.text(option);
    return name ? resultPath(option, *name, network) : std::string();
}

std::vector<ScriptedEvent> readEvents(const Arguments& arguments, Faults& faults)
{
    const std::optional<std::string> path = arguments.text("events");
    return path ? parseEvents(readFile(*path), faults) : std::vector<ScriptedEvent>{};
}

void checkEvents(const std::vector<ScriptedEvent>& events, const Session& session, std::uint64_t steps, Faults& faults)
{
    if (events.empty())
        return;
    const Orla::VNetwork::Scope scope{session.network()};
    if (!EventPlayer::find())
        faults.add(FaultKind::Option,
                   "--events: no object of " + inQuotes(session.faults().file()) + " listens to events");
    for (const ScriptedEvent& event : events) {
        if (event.step >= steps)
            faults.add(FaultKind::Event, event.place,
                       "step " + std::to_string(event.step) + " is not evaluated; the last one is "
                           + std::to_string(steps - 1));
    }
}

} // namespace Tarn
