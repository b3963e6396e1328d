#pragma once

#include <tarn/commands/Command.hpp>
#include <tarn/run/EventScript.hpp>
#include <tarn/text/Faults.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The options of `tarn run` that single evaluations and studies share.

namespace Tarn {

class Session;

/// Returns the number of an option; nothing if it is not given.
/// \throw UsageError if it is not a whole number, \p least or more.
std::optional<std::uint64_t> readNumber(const Arguments& arguments, const std::string& option, std::uint64_t least);

/// Returns the number of threads of the option `--jobs`, at least 1; nothing if it is not given.
/// \throw UsageError
std::optional<unsigned> readJobs(const Arguments& arguments);

/// Returns the absolute path of the result of \p option, or a name of standard output; empty if
/// the option is not given.
/// \throw UsageError if it is the file \p network.
std::string placeOf(const Arguments& arguments, const std::string& option, const std::string& network);

/// Returns the events of the option `--events`, if it is given. Adds faults to \p faults.
/// \throw Loam::FileError
std::vector<ScriptedEvent> readEvents(const Arguments& arguments, Faults& faults);

/// Adds a fault for each event that would never be played in \p steps steps.
void checkEvents(const std::vector<ScriptedEvent>& events, const Session& session, std::uint64_t steps, Faults& faults);

} // namespace Tarn
