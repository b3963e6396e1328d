#include <tarn/run/FileWatcher.hpp>

#include <tarn/text/Messages.hpp>

#include <loam/FileError.hpp>
#include <loam/StringUtil.hpp>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <deque>
#include <filesystem>
#include <span>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tarn {

namespace {

// An editor that removes a file and writes it again needs less.
constexpr int QuietMilliseconds = 5;

// Another program may write all the time.
constexpr std::chrono::milliseconds LongestSettling{200};

// As many as the system follows in one path.
constexpr int MostLinks = 40;

constexpr std::uint32_t ContentEvents = IN_CLOSE_WRITE | IN_MOVED_TO;
constexpr std::uint32_t NameEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_ATTRIB;
constexpr std::uint32_t FolderEvents = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t LostEvents = FolderEvents | IN_UNMOUNT | IN_IGNORED | IN_Q_OVERFLOW;

std::deque<std::string> piecesOf(const std::string& path)
{
    std::deque<std::string> pieces;
    Loam::StringUtil::forEachPiece(path, '/', [&pieces](std::string_view piece) {
        if (!piece.empty() && piece != ".")
            pieces.emplace_back(piece);
    });
    return pieces;
}

std::string absoluteName(const std::string& path)
{
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::absolute(path, error);
    return error ? path : whole.string();
}

std::string targetOf(const std::string& link)
{
    std::error_code error;
    return std::filesystem::read_symlink(link, error).string();
}

// A new file is complete when its writer closes it, which is another event. A new link is complete
// at once.
bool isBeingWritten(const std::string& path)
{
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1;
}

// Waits until a descriptor is readable. Returns false after the time; negative means forever.
bool isReadable(std::span<pollfd> descriptors, int milliseconds)
{
    for (;;) {
        const int count = ::poll(descriptors.data(), descriptors.size(), milliseconds);
        if (count >= 0 || errno != EINTR)
            return count > 0;
    }
}

} // namespace

FileState FileState::of(const std::string& path)
{
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return {};
    return {.exists = true,
            .device = status.st_dev,
            .number = status.st_ino,
            .size = status.st_size,
            .modified = std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec,
            .mode = status.st_mode};
}

FileWatcher::FileWatcher() : m_descriptor{::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)}
{
    if (m_descriptor < 0)
        throw Loam::FileError{"cannot watch files", errno};
}

FileWatcher::~FileWatcher()
{
    ::close(m_descriptor);
}

void FileWatcher::watch(const std::map<std::string, FileState>& files)
{
    m_files = files;
    std::erase_if(m_changed, [this](const std::string& file) { return !m_files.contains(file); });
    followAll();
    // Afterwards, so that no change is missed in between.
    compareStates();
}

std::vector<std::string> FileWatcher::wait(int stop)
{
    pollfd descriptors[] = {{m_descriptor, POLLIN, 0}, {stop, POLLIN, 0}};
    while (m_changed.empty()) {
        isReadable(descriptors, -1);
        if (descriptors[1].revents != 0)
            return {};
        readEvents();
    }
    const auto end = std::chrono::steady_clock::now() + LongestSettling;
    while (isReadable(std::span(descriptors).first(1), QuietMilliseconds) && std::chrono::steady_clock::now() < end)
        readEvents();
    const std::set<std::string> changed = std::exchange(m_changed, {});
    return {changed.begin(), changed.end()};
}

void FileWatcher::followAll()
{
    std::map<int, Folder> former = std::exchange(m_folders, {});
    m_known.clear();
    m_refusals.clear();
    for (const auto& [file, state] : m_files)
        follow(file);
    for (const auto& [watch, folder] : former) {
        if (!m_folders.contains(watch))
            ::inotify_rm_watch(m_descriptor, watch);
    }
}

// Watches all folders that decide which file the path means. Each is watched before its entry is
// examined, so no change is missed in between.
void FileWatcher::follow(const std::string& file)
{
    std::deque<std::string> names = piecesOf(absoluteName(file));
    std::string folder;
    for (int links = 0; !names.empty();) {
        const std::string name = std::move(names.front());
        names.pop_front();
        if (name == "..") {
            folder.resize(folder.empty() ? 0 : folder.rfind('/'));
            continue;
        }
        const std::string path = folder + '/' + name;
        const int watch = add(folder.empty() ? "/" : folder);
        if (watch >= 0) {
            std::set<std::string>& files = m_folders[watch].names[name];
            if (names.empty())
                files.insert(file);
        } else if (names.empty() && watch != -ENOENT && watch != -ENOTDIR) {
            // A missing folder is an entry of one that is watched. Without the folders above,
            // only their renaming is missed.
            m_refusals.insert(printable(folder) + ": " + std::strerror(-watch));
        }
        struct stat status {};
        if (::lstat(path.c_str(), &status) != 0)
            return;
        if (S_ISLNK(status.st_mode)) {
            if (++links > MostLinks)
                return;
            const std::string target = targetOf(path);
            if (target.starts_with('/'))
                folder.clear();
            const std::deque<std::string> more = piecesOf(target);
            names.insert(names.begin(), more.begin(), more.end());
        } else {
            folder = path;
        }
    }
}

// Returns the watch descriptor of the folder, or a negative error number.
int FileWatcher::add(const std::string& folder)
{
    if (const auto known = m_known.find(folder); known != m_known.end())
        return known->second;
    const int watch =
        ::inotify_add_watch(m_descriptor, folder.c_str(), ContentEvents | NameEvents | FolderEvents | IN_ONLYDIR);
    const int result = watch < 0 ? -errno : watch;
    m_known.emplace(folder, result);
    if (result >= 0)
        m_folders[result].path = folder;
    return result;
}

void FileWatcher::readEvents()
{
    alignas(inotify_event) std::array<char, 16384> buffer;
    bool mustFollow = false;
    for (;;) {
        const ssize_t length = ::read(m_descriptor, buffer.data(), buffer.size());
        if (length < 0 && errno == EINTR)
            continue;
        if (length <= 0)
            break;
        for (const char* next = buffer.data(); next < buffer.data() + length;) {
            const auto& event = *reinterpret_cast<const inotify_event*>(next);
            next += sizeof event + event.len;
            const auto folder = m_folders.find(event.wd);
            if ((event.mask & IN_Q_OVERFLOW) != 0 || (folder != m_folders.end() && (event.mask & LostEvents) != 0))
                mustFollow = true;
            if (folder == m_folders.end() || event.len == 0)
                continue;
            const auto found = folder->second.names.find(event.name);
            if (found == folder->second.names.end())
                continue;
            if ((event.mask & ContentEvents) != 0)
                m_changed.insert(found->second.begin(), found->second.end());
            const std::string path = folder->second.path + '/' + event.name;
            mustFollow = mustFollow || (event.mask & IN_CREATE) == 0 || !isBeingWritten(path);
        }
    }
    if (mustFollow) {
        followAll();
        compareStates();
    }
}

void FileWatcher::compareStates()
{
    for (auto& [file, known] : m_files) {
        const FileState state = FileState::of(file);
        if (state != known)
            m_changed.insert(file);
        known = state;
    }
}

} // namespace Tarn
