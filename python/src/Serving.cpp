#include "Serving.hpp"

#include "References.hpp"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <list>
#include <stdexcept>
#include <utility>

#include <unistd.h>

namespace Tarn::Python {

namespace {

// How long a signal waits for its handler, and a warning for its log.
constexpr std::chrono::milliseconds pause{50};

const ::pid_t importer = ::getpid();

// What threads know of the end of the interpreter.
struct End {
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<std::thread::id> ender; // the thread that finalizes the interpreter
    std::size_t entering = 0;             // threads that ask for the interpreter lock
    std::list<Orla::VCancellation> running;
};

// Never destroyed: threads may wait in it until the process ends.
End& end()
{
    static End& end = *new End;
    return end;
}

// Cancels the evaluation at the end of the interpreter.
class Running {
public:
    explicit Running(const Orla::VCancellation& cancellation)
    {
        const std::lock_guard lock{end().mutex};
        m_place = end().running.insert(end().running.end(), cancellation);
        if (end().ender)
            m_place->cancel();
    }

    ~Running()
    {
        const std::lock_guard lock{end().mutex};
        end().running.erase(m_place);
        end().changed.notify_all();
    }

private:
    std::list<Orla::VCancellation>::iterator m_place;
};

void handleSignals()
{
    if (PyErr_CheckSignals() != 0)
        throw py::error_already_set();
}

// How many updates of objects written in Python this thread runs.
thread_local int depthOfUpdates = 0;

// A thread that ends with `done` set; its exception is kept.
class Worker {
public:
    explicit Worker(std::function<void()> work) : m_thread{[this, work = std::move(work)] { run(work); }} {}

    // Returns true once the work is done.
    bool waitFor(std::chrono::milliseconds time)
    {
        std::unique_lock lock{m_mutex};
        return m_isDone.wait_for(lock, time, [this] { return m_done; });
    }

    void join()
    {
        m_thread.join();
        if (m_error)
            std::rethrow_exception(m_error);
    }

private:
    void run(const std::function<void()>& work)
    {
        try {
            work();
        } catch (...) {
            m_error = std::current_exception();
        }
        const std::lock_guard lock{m_mutex};
        m_done = true;
        m_isDone.notify_one();
    }

    std::mutex m_mutex;
    std::condition_variable m_isDone;
    bool m_done = false;
    std::exception_ptr m_error;
    std::thread m_thread; // last, because it uses the others
};

} // namespace

Unlocked::Unlocked()
{
    m_release.emplace();
}

Unlocked::~Unlocked()
{
    std::unique_lock lock{end().mutex};
    end().changed.wait(lock, [] { return !end().ender || *end().ender == std::this_thread::get_id(); });
    ++end().entering;
    lock.unlock();
    m_release.reset();
    lock.lock();
    --end().entering;
    end().changed.notify_all();
}

Locked::Locked()
{
    std::unique_lock lock{end().mutex};
    if (end().ender || Py_IsInitialized() == 0)
        throw std::runtime_error("the Python interpreter has ended");
    ++end().entering;
    lock.unlock();
    m_acquire.emplace();
    ++depthOfUpdates;
    lock.lock();
    --end().entering;
    end().changed.notify_all();
    lock.unlock();
    releaseDropped();
}

Locked::~Locked()
{
    --depthOfUpdates;
}

bool hasEnded()
{
    const std::lock_guard lock{end().mutex};
    return Py_IsInitialized() == 0;
}

Turn::Hold::Hold(Turn& turn) : m_turn{turn}
{
    if (m_turn.m_owner == std::this_thread::get_id())
        throw std::runtime_error("the network is in use: a function that reports progress must not use it");
    while (!m_turn.m_mutex.try_lock()) {
        // It may be the evaluation that waits for this thread.
        if (depthOfUpdates > 0)
            throw std::runtime_error("the network is in use: the update of an object must not use it");
        bool isMine = false;
        {
            const Unlocked unlocked;
            isMine = m_turn.m_mutex.try_lock_for(pause);
        }
        if (isMine)
            break;
        handleSignals();
    }
    m_turn.m_owner = std::this_thread::get_id();
}

Turn::Hold::~Hold()
{
    m_turn.m_owner = std::thread::id{};
    m_turn.m_mutex.unlock();
}

void Progress::report(const py::object& function)
{
    const double fraction = m_fraction.load(std::memory_order_relaxed);
    if (function.is_none() || fraction == m_reported || fraction < 0)
        return;
    m_reported = fraction;
    function(fraction);
}

void serve(const std::function<void(const Orla::VCancellation&)>& work, Orla::VCancellation cancellation,
           Progress& progress, const py::object& report)
{
    progress.begin();
    Worker worker{[&work, cancellation] {
        const Running running{cancellation};
        work(cancellation);
    }};
    std::exception_ptr interruption;
    for (bool isDone = false; !isDone;) {
        {
            const Unlocked unlocked;
            isDone = worker.waitFor(pause);
        }
        if (cancellation.isCancelled())
            interruptUpdates();
        if (interruption)
            continue;
        try {
            logMessages();
            handleSignals();
            progress.report(report);
        } catch (...) {
            interruption = std::current_exception();
            cancellation.cancel();
        }
    }
    worker.join();
    if (interruption)
        std::rethrow_exception(interruption);
}

void endServing()
{
    {
        const std::lock_guard lock{end().mutex};
        end().ender = std::this_thread::get_id();
        for (Orla::VCancellation& cancellation : end().running)
            cancellation.cancel();
    }
    interruptUpdates();
    const py::gil_scoped_release release;
    std::unique_lock lock{end().mutex};
    end().changed.wait_for(lock, std::chrono::seconds(1), [] { return end().entering == 0 && end().running.empty(); });
}

bool isForked() noexcept
{
    return ::getpid() != importer;
}

} // namespace Tarn::Python
