#include "Serving.hpp"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <stdexcept>

#include <unistd.h>

namespace Tarn::Python {

namespace {

// How long a signal waits for its handler, and a warning for its log.
constexpr std::chrono::milliseconds pause{50};

const ::pid_t importer = ::getpid();

void handleSignals()
{
    if (PyErr_CheckSignals() != 0)
        throw py::error_already_set();
}

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

Turn::Hold::Hold(Turn& turn) : m_turn{turn}
{
    if (m_turn.m_owner == std::this_thread::get_id())
        throw std::runtime_error("the network is in use: a function that reports progress must not use it");
    while (!m_turn.m_mutex.try_lock()) {
        bool isMine = false;
        {
            const py::gil_scoped_release release;
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
    Worker worker{[&work, cancellation] { work(cancellation); }};
    std::exception_ptr interruption;
    for (bool isDone = false; !isDone;) {
        {
            const py::gil_scoped_release release;
            isDone = worker.waitFor(pause);
        }
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

bool isForked() noexcept
{
    return ::getpid() != importer;
}

} // namespace Tarn::Python
