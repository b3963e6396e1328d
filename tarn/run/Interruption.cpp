#include <tarn/run/Interruption.hpp>

#include <tarn/text/EmergencyMessage.hpp>
#include <tarn/text/EndProcess.hpp>

#include <loam/OutputFile.hpp>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

#include <sys/eventfd.h>
#include <unistd.h>

namespace Tarn {

namespace {

// Time to finish, in nanoseconds; well within the promised second.
constexpr long Grace = 800'000'000;

constexpr int Signals[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<Orla::VCancellation*> theCancellation{nullptr};
std::atomic<int> theSignal{0};
std::atomic<int> theDescriptor{-1};
std::atomic<pid_t> theProcessToCancel{0};
timer_t theTimer;
bool theTimerExists = false;
struct sigaction theFormerActions[std::size(Signals)];

static_assert(std::atomic<int>::is_always_lock_free, "a signal handler must not wait for a lock");

// Everything from here to the class runs in signal handlers.

[[noreturn]] void endAtOnce(EmergencyMessage& message)
{
    message.write();
    Loam::OutputFile::saveUnfinished();
    Loam::OutputFile::removeUnfinished();
    endProcess(128 + theSignal.load());
}

void graceIsOver(int)
{
    EmergencyMessage message;
    message << "tarn: interrupted; ";
    if (!message.appendRunning())
        message << "an object";
    message << " did not stop in time";
    endAtOnce(message);
}

[[noreturn]] void endAtSecondSignal()
{
    EmergencyMessage message;
    message << "tarn: interrupted a second time";
    endAtOnce(message);
}

void interrupted(int signal)
{
    const int error = errno;
    if (::getpid() != theProcessToCancel) {
        // A process that an object forked ends as if it had no handler.
        std::signal(signal, SIG_DFL);
        std::raise(signal);
        return;
    }
    int none = 0;
    if (!theSignal.compare_exchange_strong(none, signal))
        endAtSecondSignal();
    if (Orla::VCancellation* cancellation = theCancellation.load())
        cancellation->cancel();
    if (const int descriptor = theDescriptor.load(); descriptor >= 0)
        ::eventfd_write(descriptor, 1);
    if (theTimerExists) {
        itimerspec time{};
        time.it_value.tv_nsec = Grace;
        ::timer_settime(theTimer, 0, &time, nullptr);
    }
    errno = error;
}

} // namespace

Interruption::Interruption() : m_descriptor{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)}
{
    theSignal = 0;
    theDescriptor = m_descriptor;
    theProcessToCancel = ::getpid();
    theCancellation = &m_cancellations.back();

    // Libraries are unlikely to use the timer's signal themselves.
    struct sigaction action {};
    sigfillset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    action.sa_handler = graceIsOver;
    ::sigaction(SIGRTMAX, &action, nullptr);
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGRTMAX;
    theTimerExists = ::timer_create(CLOCK_MONOTONIC, &event, &theTimer) == 0;

    action.sa_handler = interrupted;
    for (std::size_t i = 0; i < std::size(Signals); ++i) {
        ::sigaction(Signals[i], nullptr, &theFormerActions[i]);
        if (theFormerActions[i].sa_handler != SIG_IGN)
            ::sigaction(Signals[i], &action, nullptr);
    }
}

Interruption::~Interruption()
{
    for (std::size_t i = 0; i < std::size(Signals); ++i)
        ::sigaction(Signals[i], &theFormerActions[i], nullptr);
    if (theTimerExists)
        ::timer_delete(theTimer);
    theTimerExists = false;
    std::signal(SIGRTMAX, SIG_DFL);
    theCancellation = nullptr;
    theDescriptor = -1;
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

void Interruption::renew()
{
    m_cancellations.emplace_back();
    theCancellation = &m_cancellations.back();
    if (signal() != 0)
        m_cancellations.back().cancel();
}

int Interruption::signal() noexcept
{
    return theSignal.load();
}

} // namespace Tarn
