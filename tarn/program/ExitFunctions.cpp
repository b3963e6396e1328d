#include <tarn/run/CrashReport.hpp>
#include <tarn/text/EndProcess.hpp>

#include <cstdlib>

#include <unistd.h>

// Linked into the program itself: libraries that call these functions of the C library call the
// following ones instead.

extern "C" void _exit(int status)
{
    Tarn::CrashReport::reportExit();
    Tarn::endProcess(status);
}

extern "C" void _Exit(int status) noexcept
{
    ::_exit(status);
}
