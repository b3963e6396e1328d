#pragma once

#include <csignal>

namespace Tarn {

/// While it exists, the program reports a crash or an unexpected end before it ends: which object
/// was running, or what else the program was doing with code of a library. Outputs for which
/// `Loam::OutputFile::saveIfUnfinished` was called are completed.
///
/// If the initialization of a library throws an exception, the program ends with the status of a
/// network that was not understood. Unfinished files are removed.
///
/// After a fatal signal the former handler runs, by default the system's, so the exit status and
/// the memory dump are those of any program. A call of `exit` or `quick_exit` in code of a
/// library ends the program with status 1. Processes that such code forks from the program are
/// not watched. Only one instance may exist at a time.
class CrashReport {
public:
    CrashReport();
    ~CrashReport();
    CrashReport(const CrashReport&) = delete;
    CrashReport& operator=(const CrashReport&) = delete;

    /// Ends the program with status 1 if code of a library is running, which must have called
    /// `exit` or a similar function. Otherwise does nothing.
    static void reportExit() noexcept;

    /// Lets the program exit at once, even while code of a library is running.
    static void ignoreExit() noexcept;

    /// Call it again when libraries have been loaded: their own exit handlers then run later.
    static void watchForExit() noexcept;

    /// Lets this thread report an overflow of its stack until it ends. The constructor does so
    /// for its thread and for those of `TaskExecutor`.
    static void useSignalStack() noexcept;
};

} // namespace Tarn
