#include <tarn/run/CrashReport.hpp>

#include <tarn/libraries/Initialization.hpp>
#include <tarn/run/TaskExecutor.hpp>
#include <tarn/text/EmergencyMessage.hpp>
#include <tarn/text/EndProcess.hpp>

#include <loam/OutputFile.hpp>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include <unistd.h>

namespace Tarn {

namespace {

struct FatalSignal {
    int number;
    const char* description;
};

constexpr FatalSignal FatalSignals[] = {{SIGSEGV, "segmentation fault"},
                                        {SIGBUS, "bus error"},
                                        {SIGFPE, "arithmetic exception"},
                                        {SIGILL, "illegal instruction"},
                                        {SIGABRT, "abort"}};

constexpr std::size_t SignalStackSize = 65536;

// As of a network with faults.
constexpr int InitializationFailed = 2;

struct sigaction theFormerCrashActions[std::size(FatalSignals)];
std::atomic<bool> theCrashIsReported{false};
std::atomic<bool> theExitIsWatched{false};
std::atomic<pid_t> theWatchedProcess{0}; // not a process that code of a library forked from it
static_assert(std::atomic<pid_t>::is_always_lock_free);

// The terminate handler while a library is initialized. Allocates nothing: the exception may
// report that no memory is left.
[[noreturn]] void endBecauseOfLibrary()
{
    Loam::OutputFile::removeUnfinished();
    const std::string* const title = Initialization::title();
    EmergencyMessage message;
    message << "tarn: " << (title ? std::string_view(*title) : "a library") << " cannot be loaded: its initialization ";
    try {
        if (const std::exception_ptr thrown = std::current_exception())
            std::rethrow_exception(thrown);
        message << "ended the program without an exception";
    } catch (const std::bad_alloc&) {
        message << "ran out of memory";
    } catch (const std::exception& error) {
        (message << "threw an exception: ").appendForeign(error.what());
    } catch (...) {
        message << "threw an object that is not an exception of the standard library";
    }
    message.write();
    endProcess(InitializationFailed);
}

void saveOutputs() noexcept
{
    Loam::OutputFile::saveUnfinished();
    Loam::OutputFile::removeUnfinished();
}

// Everything from here on runs in signal handlers and exit handlers.

void restoreActions() noexcept
{
    for (std::size_t i = 0; i < std::size(FatalSignals); ++i)
        ::sigaction(FatalSignals[i].number, &theFormerCrashActions[i], nullptr);
}

void reportCrash(int signal)
{
    // Other threads wait until the process ends.
    while (theCrashIsReported.exchange(true))
        ::pause();
    const auto* const found = std::ranges::find(FatalSignals, signal, &FatalSignal::number);
    EmergencyMessage message;
    message << "tarn: crashed (" << found->description << ")";
    if (!message.appendContext())
        message << " in the program itself";
    message.write();
    saveOutputs();
}

void handleCrash(int signal, siginfo_t* info, void*)
{
    if (::getpid() == theWatchedProcess)
        reportCrash(signal);
    restoreActions();
    // A fault happens again when the handler returns; a signal that was sent does not.
    if (!info || info->si_code <= 0)
        std::raise(signal);
}

// Gives the thread a signal stack, unless it has one, and removes it when the thread ends.
class SignalStack {
public:
    SignalStack() noexcept
    {
        stack_t stack{};
        if (::sigaltstack(nullptr, &stack) != 0 || (stack.ss_flags & SS_DISABLE) == 0)
            return;
        m_memory.reset(new (std::nothrow) char[SignalStackSize]);
        stack = {.ss_sp = m_memory.get(), .ss_flags = 0, .ss_size = SignalStackSize};
        if (m_memory)
            ::sigaltstack(&stack, nullptr);
    }

    ~SignalStack()
    {
        const stack_t none{.ss_sp = nullptr, .ss_flags = SS_DISABLE, .ss_size = 0};
        if (m_memory)
            ::sigaltstack(&none, nullptr);
    }

    SignalStack(const SignalStack&) = delete;
    SignalStack& operator=(const SignalStack&) = delete;

private:
    std::unique_ptr<char[]> m_memory;
};

} // namespace

CrashReport::CrashReport()
{
    useSignalStack();
    struct sigaction action {};
    sigfillset(&action.sa_mask);
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    action.sa_sigaction = handleCrash;
    for (std::size_t i = 0; i < std::size(FatalSignals); ++i)
        ::sigaction(FatalSignals[i].number, &action, &theFormerCrashActions[i]);
    theWatchedProcess = ::getpid();
    theExitIsWatched = true;
    watchForExit();
    TaskExecutor::prepareThreadsWith(useSignalStack);
    Initialization::setTerminateHandler(endBecauseOfLibrary);
}

CrashReport::~CrashReport()
{
    Initialization::setTerminateHandler(nullptr);
    TaskExecutor::prepareThreadsWith(nullptr);
    theExitIsWatched = false;
    restoreActions();
}

void CrashReport::reportExit() noexcept
{
    EmergencyMessage message;
    message << "tarn: exit was called";
    if (!theExitIsWatched || ::getpid() != theWatchedProcess || !message.appendContext()
        || theCrashIsReported.exchange(true))
        return;
    message.write();
    saveOutputs();
    endProcess(1);
}

void CrashReport::ignoreExit() noexcept
{
    theExitIsWatched = false;
}

void CrashReport::watchForExit() noexcept
{
    // Without memory for an entry, exit handlers that were registered earlier run.
    static_cast<void>(std::atexit(reportExit));
    static_cast<void>(std::at_quick_exit(reportExit));
}

void CrashReport::useSignalStack() noexcept
{
    static thread_local const SignalStack stack;
}

} // namespace Tarn
