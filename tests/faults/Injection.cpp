#include "support/ReplacedNew.hpp"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <new>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

// Replaces functions of the program that it is linked with, so that a call of them fails.
// Environment variables select the fault:
//
//     FAULT_KIND    "allocation": an allocation throws
//                   "memory": this one and all later ones throw
//                   "write": writing, or completing a file, fails as on a full disk, and so do all
//                            later attempts
//                   "signal": an allocation is preceded by SIGTERM
//                   "interrupt": a write, or a step of creating or completing a file, is preceded
//                                by SIGTERM
//                   "insist": as "interrupt", but SIGTERM arrives twice
//     FAULT_AT      the number of the call, from 1; 0 for none
//     FAULT_COUNT   a file that receives the number of calls at the end
//     FAULT_NAMED   if set, the file system lacks unnamed temporary files
//
// Calls are counted from the start of `main` on: until then nothing could handle a fault.

namespace {

enum class Kind { None, Allocation, Memory, Write, Signal, Interrupt, Insist };

Kind theKind = Kind::None;
long theFault = 0;
long theCalls = 0;
bool theFilesHaveNames = false;

const char* setting(const char* name)
{
    const char* const text = std::getenv(name);
    return text ? text : "";
}

void writeCount()
{
    const Kind kind = theKind;
    theKind = Kind::None;
    const char* const path = setting("FAULT_COUNT");
    if (kind == Kind::None || !*path)
        return;
    char digits[24];
    char* first = digits + sizeof digits;
    for (long rest = theCalls; first == digits + sizeof digits || rest > 0; rest /= 10)
        *--first = static_cast<char>('0' + rest % 10);
    const int file = static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_TRUNC, 0600));
    ::syscall(SYS_write, file, first, static_cast<std::size_t>(digits + sizeof digits - first));
    ::syscall(SYS_close, file);
}

// Sets up the fault before `main`, after the shared libraries were set up.
struct Plan {
    Plan()
    {
        const char* const kind = setting("FAULT_KIND");
        theFault = std::atol(setting("FAULT_AT"));
        if (std::strcmp(kind, "allocation") == 0)
            theKind = Kind::Allocation;
        else if (std::strcmp(kind, "memory") == 0)
            theKind = Kind::Memory;
        else if (std::strcmp(kind, "write") == 0)
            theKind = Kind::Write;
        else if (std::strcmp(kind, "signal") == 0)
            theKind = Kind::Signal;
        else if (std::strcmp(kind, "interrupt") == 0)
            theKind = Kind::Interrupt;
        else if (std::strcmp(kind, "insist") == 0)
            theKind = Kind::Insist;
        theFilesHaveNames = *setting("FAULT_NAMED") != 0;
        std::atexit(writeCount);
    }
} plan;

void count(bool isCounted, bool isSignal)
{
    if (!isCounted || ++theCalls != theFault || !isSignal)
        return;
    std::raise(SIGTERM);
    if (theKind == Kind::Insist)
        std::raise(SIGTERM);
}

bool isInterrupted()
{
    return theKind == Kind::Interrupt || theKind == Kind::Insist;
}

bool allocationFails()
{
    count(theKind == Kind::Allocation || theKind == Kind::Memory || theKind == Kind::Signal, theKind == Kind::Signal);
    return theFault > 0
           && ((theKind == Kind::Allocation && theCalls == theFault)
               || (theKind == Kind::Memory && theCalls >= theFault));
}

bool writeFails()
{
    count(theKind == Kind::Write || isInterrupted(), isInterrupted());
    if (theKind != Kind::Write || theFault == 0 || theCalls < theFault)
        return false;
    errno = ENOSPC;
    return true;
}

} // namespace

void ReplacedNew::allocating()
{
    if (allocationFails())
        throw std::bad_alloc{};
}

void ReplacedNew::allocated() noexcept
{
}

void ReplacedNew::released() noexcept
{
}

// Messages on standard error are not counted: no result depends on them.
extern "C" ssize_t write(int file, const void* bytes, std::size_t size)
{
    if (file != STDERR_FILENO && writeFails())
        return -1;
    return ::syscall(SYS_write, file, bytes, size);
}

// The signal arrives as soon as the file exists.
extern "C" int open(const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = flags & (O_CREAT | __O_TMPFILE) ? va_arg(arguments, unsigned) : 0;
    va_end(arguments);
    if (theFilesHaveNames && (flags & O_TMPFILE) == O_TMPFILE) {
        errno = EOPNOTSUPP;
        return -1;
    }
    const auto file = static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
    if (file >= 0 && (flags & O_CREAT) != 0)
        count(isInterrupted(), true);
    return file;
}

extern "C" int fsync(int file)
{
    return writeFails() ? -1 : static_cast<int>(::syscall(SYS_fsync, file));
}

extern "C" int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept
{
    return writeFails() ? -1 : static_cast<int>(::syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

extern "C" int rename(const char* from, const char* to) noexcept
{
    return writeFails() ? -1 : static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
