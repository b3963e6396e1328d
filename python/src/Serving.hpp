#pragma once

#include <pybind11/pybind11.h>

#include <trellis/VRequest.hpp>

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

// How Python threads wait for the framework, and its threads for Python. Python threads wait for the
// framework only without the interpreter lock. Threads of the framework take that lock only to
// create and update objects written in Python; warnings and progress are noted, and the Python
// thread that waits passes them on. So locks of the framework and of Python cannot block each
// other.

namespace Tarn::Python {

namespace py = pybind11;

/// Releases the interpreter lock for its lifetime. Python ends threads that ask for the lock while it
/// is finalized, in a way that C++ cannot pass on; such a thread waits here instead.
class Unlocked {
public:
    Unlocked();
    ~Unlocked();
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;

private:
    std::optional<py::gil_scoped_release> m_release;
};

/// Takes the interpreter lock in a thread of the framework, for its lifetime.
class Locked {
public:
    /// \throw std::runtime_error if the interpreter has ended.
    Locked();
    ~Locked();
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    std::optional<py::gil_scoped_acquire> m_acquire;
};

/// Returns true once the interpreter is being finalized.
bool hasEnded();

/// Raises `Cancelled` in the updates, written in Python, whose evaluation was cancelled. Requires the
/// interpreter lock.
void interruptUpdates();

/// Gives one Python thread at a time the use of a session or a context.
class Turn {
public:
    class Hold {
    public:
        /// Waits without the interpreter lock; a signal handler that raises ends the wait.
        /// \throw std::runtime_error if this thread has the turn already: a function that reports
        ///        progress used the context.
        explicit Hold(Turn& turn);
        ~Hold();
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        Turn& m_turn;
    };

private:
    std::timed_mutex m_mutex;
    std::atomic<std::thread::id> m_owner;
};

/// Logs the warnings that were noted so far. Requires the interpreter lock.
void logMessages();

/// Calls \p function without the interpreter lock and logs the warnings that it caused.
template<class Function>
auto unlocked(Function&& function)
{
    struct Logging {
        ~Logging() { logMessages(); }
    } logging;
    const Unlocked unlocked;
    return function();
}

/// The last fraction that an evaluation reported.
class Progress {
public:
    void note(double fraction) noexcept { m_fraction.store(fraction, std::memory_order_relaxed); }

    /// Forgets the fractions of an earlier evaluation.
    void begin() noexcept
    {
        note(-1);
        m_reported = -1;
    }

    /// Passes a fraction to \p function if it was not passed before. Requires the interpreter lock.
    void report(const py::object& function);

private:
    std::atomic<double> m_fraction = -1;
    double m_reported = -1;
};

/// Runs \p work in another thread, while this one handles signals, logs warnings and reports
/// progress. If a handler or a function for progress raises, cancels \p work, waits for its end and
/// rethrows.
void serve(const std::function<void(const Orla::VCancellation&)>& work, Orla::VCancellation cancellation,
           Progress& progress, const py::object& report);

/// Cancels all evaluations before the interpreter is finalized, and waits up to a second for their end.
void endServing();

/// Returns true in a process that was forked after the module was imported. It lacks the threads of
/// its parent.
bool isForked() noexcept;

} // namespace Tarn::Python
