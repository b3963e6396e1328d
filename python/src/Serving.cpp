#include "Serving.hpp"

#include "References.hpp"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <list>
#include <stdexcept>
#include <utility>
#include <vector>

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

// A thread that works for one Python thread at a time. It waits for more work until the process
// ends, because a cheap step takes far less time than creating a thread.
class Worker {
public:
    // Takes an idle worker, or creates one. Requires the interpreter lock, which guards the idle
    // ones: a process that forks has it, so none of them is being taken then.
    static Worker& take()
    {
        std::vector<Worker*>& all = idle();
        // Its threads are in the parent.
        if (!all.empty() && all.back()->m_process != ::getpid())
            all.clear();
        if (all.empty())
            return *new Worker;
        Worker& last = *all.back();
        all.pop_back();
        return last;
    }

    // Makes the worker available. Requires the interpreter lock.
    void release() { idle().push_back(this); }

    void begin(const std::function<void()>& work) { change(&work); }

    // Returns true once the work is done.
    bool waitFor(std::chrono::milliseconds time)
    {
        if (isSoon([this] { return !m_work.load(); }))
            return true;
        std::unique_lock lock{m_mutex};
        return m_changed.wait_for(lock, time, [this] { return !m_work.load(); });
    }

    // Returns the exception that ended the work, or null.
    std::exception_ptr error() { return std::exchange(m_error, nullptr); }

private:
    Worker()
    {
        std::thread{[this] { run(); }}.detach();
    }

    static std::vector<Worker*>& idle()
    {
        static std::vector<Worker*>& idle = *new std::vector<Worker*>;
        return idle;
    }

    // Waits without sleeping for a moment: waking a thread takes longer than a cheap step.
    template<class Condition>
    static bool isSoon(Condition condition)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(50);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end)
                return false;
            std::this_thread::yield();
        }
        return true;
    }

    void change(const std::function<void()>* work)
    {
        const std::lock_guard lock{m_mutex};
        m_work = work;
        m_changed.notify_all();
    }

    void run()
    {
        for (;;) {
            if (!isSoon([this] { return m_work.load(); })) {
                std::unique_lock lock{m_mutex};
                m_changed.wait(lock, [this] { return m_work.load(); });
            }
            try {
                (*m_work.load())();
            } catch (...) {
                m_error = std::current_exception();
            }
            change(nullptr);
        }
    }

    const ::pid_t m_process = ::getpid();
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::atomic<const std::function<void()>*> m_work = nullptr;
    std::exception_ptr m_error;
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
    const std::function<void()> task = [&work, cancellation] {
        const Running running{cancellation};
        work(cancellation);
    };
    Worker& worker = Worker::take();
    worker.begin(task);
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
    const std::exception_ptr error = worker.error();
    worker.release();
    if (error)
        std::rethrow_exception(error);
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
