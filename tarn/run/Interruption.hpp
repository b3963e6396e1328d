#pragma once

#include <trellis/VRequest.hpp>

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

    const Orla::VCancellation& cancellation() const noexcept { return m_cancellation; }

    /// Returns the first signal received, or 0.
    static int signal() noexcept;

private:
    Orla::VCancellation m_cancellation;
};

} // namespace Tarn
