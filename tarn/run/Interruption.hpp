#pragma once

#include <trellis/VRequest.hpp>

namespace Tarn {

/// While it lives, SIGINT, SIGTERM and SIGHUP end the evaluation instead of the
/// process: they cancel it, and the program winds up. If it does not within a
/// second, because an object does not listen, or if there is a second signal,
/// the process ends at once and takes unfinished files with it.
///
/// Signals that were ignored before stay so. There may be one at a time.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    const Orla::VCancellation& cancellation() const noexcept { return m_cancellation; }

    /// The signal that came first, 0 if none did.
    static int signal() noexcept;

private:
    Orla::VCancellation m_cancellation;
};

} // namespace Tarn
