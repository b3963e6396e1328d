#include <tarn/reference/ManualFolder.hpp>

#include <tarn/text/Messages.hpp>
#include <tarn/text/ReadFile.hpp>

#include <loam/FileError.hpp>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tarn {

namespace {

namespace fs = std::filesystem;

constexpr char Unfinished[] = ".tarn-manual-unfinished";
constexpr char Head[] = "Files of this manual. The next manual replaces or removes them.";

bool isDirectory(const std::string& path)
{
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

// The names in a list come from a file that anyone may have changed.
bool isFileName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

void move(const std::string& from, const std::string& to)
{
    std::error_code error;
    fs::rename(from, to, error);
    if (error)
        throw Loam::FileError{"cannot write " + printable(to), error.value()};
}

} // namespace

ManualFolder::ManualFolder(const std::string& path) : m_path{path}, m_unfinished{path + '/' + Unfinished}
{
    if (::mkdir(m_path.c_str(), 0777) == 0)
        m_isCreated = true;
    else if (const int error = errno; error != EEXIST || !isDirectory(m_path))
        throw Loam::FileError{"cannot create the folder " + printable(m_path), error};

    std::error_code error;
    if (fs::is_regular_file(m_path + '/' + List, error)) {
        Loam::StringUtil::forEachPiece(readFile(m_path + '/' + List), '\n', [&](std::string_view name) {
            if (name != Head && isFileName(name))
                m_old.emplace_back(name);
        });
    } else {
        for (fs::directory_iterator entry{m_path, error}, end; !error && entry != end; entry.increment(error)) {
            if (entry->path().filename() != Unfinished)
                throw UnsuitableFolder{"the folder " + printable(m_path) + " contains "
                                       + inQuotes(entry->path().filename().string())
                                       + ", expected an empty folder or an earlier manual"};
        }
        if (error)
            throw Loam::FileError{"cannot read the folder " + printable(m_path), error.value()};
    }
    // A process that was killed may have left it.
    fs::remove_all(m_unfinished, error);
    if (::mkdir(m_unfinished.c_str(), 0777) != 0) {
        const int number = errno;
        if (m_isCreated)
            fs::remove(m_path, error);
        throw Loam::FileError{"cannot create the folder " + printable(m_unfinished), number};
    }
}

ManualFolder::~ManualFolder()
{
    std::error_code ignored;
    fs::remove_all(m_unfinished, ignored);
    if (m_isCreated)
        fs::remove(m_path, ignored); // not if it contains files
}

void ManualFolder::add(const std::string& name, const std::string& content)
{
    const std::string path = m_unfinished + '/' + name;
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    int error = file < 0 ? errno : 0;
    for (std::size_t done = 0; error == 0 && done < content.size();) {
        const ssize_t written = ::write(file, content.data() + done, content.size() - done);
        if (written >= 0)
            done += static_cast<std::size_t>(written);
        else if (errno != EINTR)
            error = errno;
    }
    if (file >= 0 && ::close(file) != 0 && error == 0 && errno != EINTR)
        error = errno;
    if (error != 0)
        throw Loam::FileError{"cannot write " + printable(path), error};
    m_new.push_back(name);
}

void ManualFolder::commit()
{
    const std::set<std::string> old(m_old.begin(), m_old.end());
    const std::set<std::string> fresh(m_new.begin(), m_new.end());
    std::string list = std::string(Head) + '\n';
    for (const std::string& name : m_new) {
        std::error_code ignored;
        const fs::file_status present = fs::symlink_status(m_path + '/' + name, ignored);
        if (fs::exists(present) && (!old.contains(name) || fs::is_directory(present)))
            throw UnsuitableFolder{"the folder " + printable(m_path) + " contains " + inQuotes(name)
                                   + ", which is not from an earlier manual, expected another folder"};
        list += name + '\n';
    }
    const std::vector<std::string> files = m_new;
    add(List, list);

    // One call for all files: a call per file would take minutes for thousands of files.
    const int folder = ::open(m_unfinished.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const int error = folder < 0 || ::syncfs(folder) != 0 ? errno : 0;
    if (folder >= 0)
        ::close(folder);
    if (error != 0)
        throw Loam::FileError{"cannot write the folder " + printable(m_unfinished), error};

    for (const std::string& name : old) {
        std::error_code failure;
        const std::string path = m_path + '/' + name;
        if (!fresh.contains(name) && !fs::is_directory(fs::symlink_status(path, failure)) && !fs::remove(path, failure)
            && failure)
            throw Loam::FileError{"cannot remove " + printable(path), failure.value()};
    }
    // The list comes first, so that a later manual may replace the files if this process is killed.
    move(m_unfinished + '/' + List, m_path + '/' + List);
    m_isCreated = false;
    for (const std::string& name : files)
        move(m_unfinished + '/' + name, m_path + '/' + name);
}

} // namespace Tarn
