#pragma once

#include <trellis/VRequest.hpp>

namespace Tarn {

/// While it lives, SIGINT, SIGTERM and SIGHUP end the evaluation instead of the
/// process: they cancel it, and the program winds up. If it does not within a
/// second, because an object does not listen, or if there is a second signal,
/// the process ends at once and takes an unfinished file with it.
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

    /// The file to remove if the process has to end at once; null for none. The
    /// text must stay until another call.
    static void setUnfinishedFile(const char* path) noexcept;

private:
    Orla::VCancellation m_cancellation;
};

} // namespace Tarn
