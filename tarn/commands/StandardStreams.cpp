#include <tarn/commands/StandardStreams.hpp>

#include <cstdio>
#include <initializer_list>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace Tarn {

StandardStreams::StandardStreams()
{
    const bool hasOutput = ::fcntl(STDOUT_FILENO, F_GETFD) != -1;
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // open() takes the lowest free descriptor, which is the missing one.
        if (::fcntl(stream, F_GETFD) == -1 && ::open("/dev/null", O_RDWR) != stream)
            break;
    }
    if (hasOutput)
        m_results = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    // Keeps the output of libraries and the program's messages in order.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);

    // Writing then fails with an error instead of ending the process, which would leave
    // temporary files behind.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

StandardStreams::~StandardStreams()
{
    if (m_results >= 0)
        ::close(m_results);
}

bool StandardStreams::isTerminal() const noexcept
{
    return m_results >= 0 && ::isatty(m_results) == 1;
}

} // namespace Tarn
