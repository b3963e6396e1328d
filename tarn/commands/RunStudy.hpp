#pragma once

#include <tarn/commands/Command.hpp>

namespace Tarn {

/// Returns true if the arguments of `tarn run` vary inputs.
bool isStudy(const Arguments& arguments);

/// Performs `tarn run` for the cases of a study. Returns the exit status.
/// \throw UsageError, Loam::FileError
int performStudy(const Arguments& arguments, const StandardStreams& streams);

} // namespace Tarn
