#pragma once

#include <tarn/commands/Command.hpp>
#include <tarn/network/Session.hpp>

#include <string>

namespace Tarn {

/// Performs `tarn run --watch`: evaluates the network \p network, and again whenever a file from
/// which it comes changes. Returns when a signal arrives, with 128 plus its number.
/// \throw UsageError; Loam::FileError if the network cannot be read at the beginning, or if a
/// result cannot be written then.
int watchNetwork(const Arguments& arguments, const LoadOptions& options, const std::string& network,
                 const StandardStreams& streams);

} // namespace Tarn
