#pragma once

#include <tarn/text/Faults.hpp>
#include <tarn/text/PlacedText.hpp>

#include <loam/Result.hpp>

#include <string>
#include <thread>
#include <vector>

namespace Tarn {

/// The library of standard objects, available to every network.
inline constexpr char StandardLibrary[] = "standard";

/// The object libraries of a network. They stay in memory until `unload` is called or the
/// process ends.
///
/// Several threads may each have libraries, also the same ones. Code is unloaded only while no
/// other thread has any, because objects and values must not be created meanwhile.
class Libraries {
public:
    /// Searches for libraries in \p folders, absolute paths, in this order.
    explicit Libraries(std::vector<std::string> folders);

    /// Leaves libraries that were not unloaded in memory.
    ~Libraries();

    Libraries(const Libraries&) = delete;
    Libraries& operator=(const Libraries&) = delete;

    /// Loads the library \p name: the file NAME.so in the first folder that has a loadable one. A
    /// name that ends in ".py" is the name of a file in Python, which needs an interpreter. Does
    /// nothing if the library is already loaded. A file that is not an object library, was built
    /// for another binary interface or registers no types is not loadable. The reason of a failure
    /// names each file found.
    Loam::Result<void> load(const std::string& name);

    /// Loads the library of standard objects, then those that a network names. Adds a fault per
    /// library that cannot be loaded, and returns their names.
    std::vector<std::string> loadAll(const std::vector<PlacedText>& names, Faults& faults);

    /// Unloads all libraries, last one first. A library of which something is still in use, and
    /// those loaded before it, stay in memory; the reason of the failure names it. While another
    /// thread has libraries, they stay in memory until the last thread unloads its own; the result
    /// is then a success.
    Loam::Result<void> unload();

    /// Returns the name of the file of the library \p name: NAME.so, or the name itself if it ends
    /// in ".py".
    static std::string fileName(const std::string& name);

    /// Returns the folders to search for libraries of a network in \p networkFolder: that of the
    /// installation of this code, ../lib/fathom beside the program, the folders in the environment
    /// variable TARN_LIBRARIES (separated by colons), \p networkFolder and its subfolder "lib".
    static std::vector<std::string> searchPath(const std::string& networkFolder);

    /// The same without a network: only the folders that the user installed libraries in or
    /// named.
    static std::vector<std::string> searchPath();

    /// Returns the folder of object libraries in the installation that \p file belongs to, a
    /// program in PREFIX/bin or a shared library in PREFIX/lib or PREFIX/lib/MACHINE:
    /// PREFIX/lib/fathom.
    static std::string installedFolder(const std::string& file);

    /// An open library. It is opened once more per user of the same file.
    struct Library {
        std::string name;
        void* handle;             // null for a file of Python
        std::string pythonFile{}; // its path
    };

private:
    static bool isOpen(void* handle);

    std::vector<std::string> m_folders;
    std::vector<Library> m_libraries;
    std::thread::id m_thread;
};

} // namespace Tarn
