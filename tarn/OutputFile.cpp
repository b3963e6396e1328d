#include <tarn/OutputFile.hpp>

#include <tarn/FileError.hpp>
#include <tarn/Interruption.hpp>
#include <tarn/Wording.hpp>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tarn {

namespace {

constexpr std::size_t BufferSize = 65536;

} // namespace

OutputFile::OutputFile(const std::string& path) : m_name{printable(path)}, m_path{path}
{
    struct stat status{};
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        m_descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        if (m_descriptor < 0)
            throw FileError{"cannot write " + m_name, errno};
        m_owned = true;
        return;
    }
    if (exists) {
        // The file behind a link is replaced, not the link.
        std::error_code error;
        const std::filesystem::path resolved = std::filesystem::canonical(path, error);
        if (!error)
            m_path = resolved.string();
    }
    openBeside(exists ? status.st_mode & 07777u : 0666u, exists);
}

OutputFile::OutputFile(int descriptor, const std::string& name) : m_name{name}, m_descriptor{descriptor}
{
    if (descriptor < 0)
        throw FileError{"cannot write " + m_name + ": it is closed"};
}

OutputFile::~OutputFile()
{
    discard();
}

void OutputFile::openBeside(mode_t mode, bool keepMode)
{
    const auto slash = m_path.rfind('/');
    const std::string start =
        (slash == std::string::npos ? std::string() : m_path.substr(0, slash + 1)) + ".tarn-"
        + std::to_string(::getpid()) + '-';
    for (int number = 1; m_descriptor < 0; ++number) {
        m_temporary = start + std::to_string(number) + ".tmp";
        m_descriptor = ::open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (m_descriptor < 0 && errno != EEXIST)
            throw FileError{"cannot write " + m_name, errno};
    }
    m_owned = true;
    Interruption::setUnfinishedFile(m_temporary.c_str());
    if (keepMode)
        ::fchmod(m_descriptor, mode);
}

void OutputFile::discard() noexcept
{
    if (m_owned && m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
    if (m_temporary.empty())
        return;
    ::unlink(m_temporary.c_str());
    Interruption::setUnfinishedFile(nullptr);
    m_temporary.clear();
}

void OutputFile::write(std::string_view bytes)
{
    m_pending += bytes;
    if (m_pending.size() >= BufferSize)
        flush();
}

void OutputFile::flush()
{
    std::size_t done = 0;
    while (done < m_pending.size()) {
        const ssize_t written = ::write(m_descriptor, m_pending.data() + done, m_pending.size() - done);
        if (written >= 0)
            done += static_cast<std::size_t>(written);
        else if (errno != EINTR)
            throw FileError{"cannot write " + m_name, errno};
    }
    m_pending.clear();
}

void OutputFile::commit()
{
    flush();
    if (!m_owned)
        return;
    // Some systems tell only now that the disk is full. What is no file cannot be
    // synchronized, and need not be.
    const bool lost = !m_temporary.empty() && ::fsync(m_descriptor) != 0 && errno != EINVAL && errno != EROFS
                      && errno != ENOTSUP;
    const int why = errno;
    const bool closed = ::close(m_descriptor) == 0;
    m_descriptor = -1;
    if (lost || !closed)
        throw FileError{"cannot write " + m_name, lost ? why : errno};
    if (m_temporary.empty())
        return;
    if (std::rename(m_temporary.c_str(), m_path.c_str()) != 0)
        throw FileError{"cannot write " + m_name, errno};
    Interruption::setUnfinishedFile(nullptr);
    m_temporary.clear();
}

} // namespace Tarn
