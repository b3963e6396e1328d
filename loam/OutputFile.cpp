#include <loam/OutputFile.hpp>

#include <loam/StringUtil.hpp>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Loam {

namespace {

constexpr std::size_t BufferSize = 65536;

// A file that is being written, for a signal handler, which must not wait for a lock.
struct Unfinished {
    std::atomic<const char*> path{nullptr};
    std::atomic<pid_t> process{0}; // a process that was forked since has a copy of the entry
};

// Programs have few at a time; files beyond the limit are not recorded.
constexpr std::size_t MostUnfinished = 64;
constinit Unfinished theUnfinished[MostUnfinished];
static_assert(std::atomic<const char*>::is_always_lock_free && std::atomic<pid_t>::is_always_lock_free);

// Call it before the file has the name, because a signal may arrive as soon as it has.
std::size_t remember(const char* path) noexcept
{
    for (std::size_t place = 0; place < MostUnfinished; ++place) {
        const char* none = nullptr;
        if (theUnfinished[place].path.compare_exchange_strong(none, path)) {
            theUnfinished[place].process = ::getpid();
            return place;
        }
    }
    return MostUnfinished;
}

void forget(std::size_t place) noexcept
{
    if (place < MostUnfinished)
        theUnfinished[place].path = nullptr;
}

// Files that are completed if the process must exit.
std::atomic<OutputFile*> theSaved[MostUnfinished];
static_assert(std::atomic<OutputFile*>::is_always_lock_free);

// Writes as much as possible. Returns the number of bytes written.
std::size_t writeAll(int descriptor, std::string_view bytes) noexcept
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (written >= 0)
            done += static_cast<std::size_t>(written);
        else if (errno != EINTR)
            break;
    }
    return done;
}

std::string processFile(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

std::string nameBeside(const std::string& path, int number)
{
    const auto slash = path.rfind('/');
    return (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) + ".unfinished-"
           + std::to_string(::getpid()) + '-' + std::to_string(number) + ".tmp";
}

// Gives an unnamed file a temporary name, which it needs to replace another file, and
// remembers it. Returns false and sets errno on failure.
bool giveName(int descriptor, const std::string& path, std::string& name, std::size_t& place)
{
    const std::string self = processFile(descriptor);
    for (int number = 1;; ++number) {
        name = nameBeside(path, number);
        place = remember(name.c_str());
        if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
            return true;
        const int error = errno;
        forget(place);
        if (error == EEXIST)
            continue;
        name.clear();
        errno = error;
        return false;
    }
}

// Opens a new unnamed file in the folder of `path`. Returns -1 if the system does not
// support that or could not name the file later.
int openUnnamed(const std::string& path, unsigned mode) noexcept
{
#ifdef O_TMPFILE
    const auto slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const int descriptor = ::open(folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, mode);
    if (descriptor < 0 || ::access(processFile(descriptor).c_str(), F_OK) == 0)
        return descriptor;
    ::close(descriptor);
#else
    static_cast<void>(path);
    static_cast<void>(mode);
#endif
    return -1;
}

} // namespace

OutputFile::OutputFile(const std::string& path) : m_name{StringUtil::printable(path)}, m_path{path}
{
    struct stat status {};
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        m_descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        if (m_descriptor < 0)
            throw FileError{"cannot write " + m_name, errno};
        m_owned = true;
        return;
    }
    if (exists) {
        // Replace the file that a link points to, not the link.
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

void OutputFile::openBeside(unsigned mode, bool keepMode)
{
    m_isFile = true;
    m_descriptor = openUnnamed(m_path, mode);
    for (int number = 1; m_descriptor < 0; ++number) {
        m_temporary = nameBeside(m_path, number);
        m_place = remember(m_temporary.c_str());
        m_descriptor = ::open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (m_descriptor >= 0)
            break;
        const int error = errno;
        forget(m_place);
        if (error != EEXIST)
            throw FileError{"cannot write " + m_name, error};
    }
    m_owned = true;
    if (keepMode)
        ::fchmod(m_descriptor, mode);
}

void OutputFile::discard() noexcept
{
    saveNoLonger();
    if (m_owned && m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
    if (m_temporary.empty())
        return;
    ::unlink(m_temporary.c_str());
    forget(m_place);
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
    if (writeAll(m_descriptor, m_pending) < m_pending.size())
        throw FileError{"cannot write " + m_name, errno};
    m_pending.clear();
}

void OutputFile::commit()
{
    saveNoLonger();
    flush();
    if (!m_owned)
        return;
    // Some systems report a full disk only here. Pipes and devices cannot be
    // synchronized, and need not be.
    if (m_isFile && ::fsync(m_descriptor) != 0 && errno != EINVAL && errno != EROFS && errno != ENOTSUP)
        throw FileError{"cannot write " + m_name, errno};
    if (m_isFile && m_temporary.empty() && !giveName(m_descriptor, m_path, m_temporary, m_place))
        throw FileError{"cannot write " + m_name, errno};
    const bool closed = ::close(m_descriptor) == 0;
    m_descriptor = -1;
    if (!closed)
        throw FileError{"cannot write " + m_name, errno};
    if (!m_isFile)
        return;
    if (std::rename(m_temporary.c_str(), m_path.c_str()) != 0)
        throw FileError{"cannot write " + m_name, errno};
    forget(m_place);
    m_temporary.clear();
}

void OutputFile::removeUnfinished() noexcept
{
    for (const Unfinished& entry : theUnfinished) {
        const char* const path = entry.path.load();
        if (path && entry.process.load() == ::getpid())
            ::unlink(path);
    }
}

void OutputFile::saveIfUnfinished(const std::string& path, const std::string& ending)
{
    saveNoLonger();
    m_ending = ending;
    m_savedPath = path;
    m_savedName = nameBeside(path, 0);
    m_descriptorPath = processFile(m_descriptor);
    m_process = ::getpid();
    for (m_savedPlace = 0; m_savedPlace < MostUnfinished; ++m_savedPlace) {
        OutputFile* none = nullptr;
        m_isSaved = theSaved[m_savedPlace].compare_exchange_strong(none, this);
        if (m_isSaved)
            return;
    }
}

void OutputFile::saveNoLonger() noexcept
{
    if (std::exchange(m_isSaved, false))
        theSaved[m_savedPlace] = nullptr;
}

void OutputFile::save() noexcept
{
    if (m_process != ::getpid() || writeAll(m_descriptor, m_pending) < m_pending.size())
        return;
    writeAll(m_descriptor, m_ending);
    if (!m_isFile)
        return;
    if (!m_temporary.empty())
        ::rename(m_temporary.c_str(), m_savedPath.c_str());
    else if (::linkat(AT_FDCWD, m_descriptorPath.c_str(), AT_FDCWD, m_savedName.c_str(), AT_SYMLINK_FOLLOW) == 0)
        ::rename(m_savedName.c_str(), m_savedPath.c_str());
}

void OutputFile::saveUnfinished() noexcept
{
    for (std::atomic<OutputFile*>& entry : theSaved) {
        if (OutputFile* const file = entry.exchange(nullptr))
            file->save();
    }
}

} // namespace Loam
