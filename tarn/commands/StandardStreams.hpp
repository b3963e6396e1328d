#pragma once

namespace Tarn {

/// Keeps standard output for results alone: libraries print diagnostics there,
/// which from now on go to standard error.
///
/// Standard streams that were closed lead to nowhere from now on, so that no file
/// that is opened later is taken for one of them.
class StandardStreams {
public:
    StandardStreams();
    ~StandardStreams();
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

    /// Descriptor of the real standard output; -1 if it was closed.
    int results() const noexcept { return m_results; }

private:
    int m_results = -1;
};

} // namespace Tarn
