#pragma once

namespace Tarn {

/// The exit status of the program. An interrupted run returns 128 plus the number of the
/// signal instead.
enum ExitStatus : int {
    Fine = 0,
    ObjectFailed = 1,  ///< an object reported an error, or a loop did not settle
    Different = 1,     ///< two networks differ
    NotUnderstood = 2, ///< the network has faults
    WrongUsage = 3,
    FileFailed = 4 ///< a file could not be read or written
};

} // namespace Tarn
