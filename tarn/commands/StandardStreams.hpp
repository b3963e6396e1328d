#pragma once

namespace Tarn {

/// Reserves standard output for results: diagnostics that libraries print there are
/// redirected to standard error.
///
/// Closed standard streams are redirected to /dev/null, so no file that is opened later is
/// taken for one of them.
class StandardStreams {
public:
    StandardStreams();
    ~StandardStreams();
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

    /// Returns the descriptor of the real standard output; -1 if it was closed.
    int results() const noexcept { return m_results; }

    /// Returns true if the real standard output is a terminal.
    bool isTerminal() const noexcept;

private:
    int m_results = -1;
};

} // namespace Tarn
