#pragma once

#include <trellis/VRequest.hpp>

#include <deque>

namespace Tarn {

/// While it exists, SIGINT, SIGTERM and SIGHUP cancel the evaluation instead of ending the
/// process. If an object ignores the cancellation for a second, or if a second signal
/// arrives, the process removes unfinished files and exits immediately.
///
/// Ignored signals stay ignored. Processes that an object forks end by the signals. Only one
/// instance may exist at a time.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Returns the cancellation for the next evaluation.
    const Orla::VCancellation& cancellation() const noexcept { return m_cancellations.back(); }

    /// Replaces the cancellation, which an object may have used to end an evaluation. The new one
    /// is cancelled only if a signal has arrived.
    void renew();

    /// Returns the first signal received, or 0.
    static int signal() noexcept;

    /// Returns a descriptor that is readable once a signal has arrived, to wait for one with
    /// `poll`; -1 if the system has none left.
    int descriptor() const noexcept { return m_descriptor; }

private:
    // Kept until the end, because a signal may arrive at any time.
    std::deque<Orla::VCancellation> m_cancellations{1};
    int m_descriptor;
};

} // namespace Tarn
