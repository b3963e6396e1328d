#pragma once

#include <string>
#include <vector>

namespace Tarn {

/// The library of standard objects, which every network can use.
inline constexpr char StandardLibrary[] = "standard";

/// The object libraries of a run. They stay in memory until the process ends
/// unless they are unloaded: nothing that came from them may be alive then.
class Libraries {
public:
    /// Libraries are looked for in \p folders, absolute paths, in this order.
    explicit Libraries(std::vector<std::string> folders);
    Libraries(const Libraries&) = delete;
    Libraries& operator=(const Libraries&) = delete;

    /// Loads the library \p name, the file NAME.so in the first folder that has
    /// one which can be loaded. Returns the empty text, or why there is none: the
    /// loader's reason for each file that was there. A library that is loaded
    /// already counts as loaded.
    std::string load(const std::string& name);

    /// Unloads them, the last one first.
    /// \pre All that came from the libraries is gone.
    void unload();

    /// Where the libraries of a network in \p networkFolder are looked for: beside
    /// the program's install, in the folders of the environment variable
    /// TARN_LIBRARIES (separated by colons), and in \p networkFolder and its
    /// subfolder "lib".
    static std::vector<std::string> searchPath(const std::string& networkFolder);

private:
    struct Library {
        std::string name;
        void* handle;
    };

    std::vector<std::string> m_folders;
    std::vector<Library> m_libraries;
};

} // namespace Tarn
