#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Tarn {

/// What the system knows about a file without reading it. Two states of a file are equal if it was
/// neither written, nor replaced, nor removed, nor given other permissions in between.
struct FileState {
    bool exists = false;
    std::uint64_t device = 0;
    std::uint64_t number = 0;
    std::int64_t size = 0;
    std::int64_t modified = 0; ///< in nanoseconds since 1970
    unsigned mode = 0;

    /// Returns the state of the file \p path. Follows links.
    static FileState of(const std::string& path);

    friend bool operator==(const FileState&, const FileState&) = default;
};

/// Waits for changes of files, which need not exist.
///
/// A file counts as changed when a program closes it after writing, renames another file to its
/// name, removes it, or changes its permissions. The folders on the way to each file are watched,
/// and those of symbolic links, not the files themselves. So a file stays watched if it is
/// replaced, or if its folder is removed, renamed or created again. Folders on network file
/// systems are watched only for changes made on this machine.
class FileWatcher {
public:
    /// \throw Loam::FileError if the system refuses.
    FileWatcher();
    ~FileWatcher();
    FileWatcher(const FileWatcher&) = delete;
    FileWatcher& operator=(const FileWatcher&) = delete;

    /// Replaces the watched files. A file whose state is not the given one counts as changed.
    void watch(const std::map<std::string, FileState>& files);

    /// Waits until at least one file has changed and no other has for some milliseconds, since
    /// programs often save a file in several steps. Returns the paths of the changed files in
    /// alphabetical order. Returns nothing if the descriptor \p stop becomes readable first.
    std::vector<std::string> wait(int stop);

    /// Returns the folders of watched files that cannot be watched, each with the reason.
    const std::set<std::string>& refusals() const noexcept { return m_refusals; }

private:
    // A folder and the names in it that matter: of folders and links on the way to files, and of
    // files, with the paths by which they are watched.
    struct Folder {
        std::string path;
        std::map<std::string, std::set<std::string>> names;
    };

    void followAll();
    void follow(const std::string& file);
    int add(const std::string& folder);
    void readEvents();
    void compareStates();

    int m_descriptor = -1;
    std::map<std::string, FileState> m_files;
    std::map<int, Folder> m_folders;    // by watch descriptor
    std::map<std::string, int> m_known; // watch descriptors, or negative error numbers, by path
    std::set<std::string> m_refusals;
    std::set<std::string> m_changed; // files not returned yet
};

} // namespace Tarn
