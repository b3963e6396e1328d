#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tarn {

/// A folder of files that a command wrote earlier and replaces. It keeps a list of them in the
/// file `ManualFolder::List`, so that files of others are neither replaced nor removed.
///
/// New files are collected in a folder inside it and appear together in `commit`, each complete.
/// If the process is killed, a later manual replaces what was written.
class ManualFolder {
public:
    static constexpr char List[] = ".tarn-manual";

    /// Creates the folder \p path if it does not exist.
    /// \throw UnsuitableFolder if it has files but no list; Loam::FileError
    explicit ManualFolder(const std::string& path);

    /// Removes the new files unless `commit` was called, and the folder if it was created.
    ~ManualFolder();

    ManualFolder(const ManualFolder&) = delete;
    ManualFolder& operator=(const ManualFolder&) = delete;

    /// \pre \p name has no "/" and was not added before.
    /// \throw Loam::FileError
    void add(const std::string& name, const std::string& content);

    std::size_t size() const noexcept { return m_new.size(); }

    /// Moves the new files into the folder and removes earlier files that were not replaced.
    /// \throw UnsuitableFolder if a file that is not in the list has the name of a new one; then
    /// the folder is unchanged. Loam::FileError
    void commit();

private:
    std::string m_path;
    std::string m_unfinished; // the folder of the new files
    std::vector<std::string> m_old;
    std::vector<std::string> m_new;
    bool m_isCreated = false;
};

/// The folder contains files that would be lost.
class UnsuitableFolder : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Tarn
