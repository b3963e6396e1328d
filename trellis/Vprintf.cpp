#include <trellis/Vprintf.hpp>

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace Orla {

namespace {

std::atomic<int> theVerbosity{0};

} // namespace

void Vprintf(int level, const char* format, ...)
{
    if (!isPrinted(level))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
}

bool isPrinted(int level) noexcept
{
    return level <= theVerbosity.load(std::memory_order_relaxed);
}

int verbosity() noexcept
{
    return theVerbosity.load(std::memory_order_relaxed);
}

void setVerbosity(int level) noexcept
{
    theVerbosity.store(level, std::memory_order_relaxed);
}

} // namespace Orla
