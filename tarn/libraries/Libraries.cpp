#include <tarn/libraries/Libraries.hpp>

#include <tarn/libraries/Initialization.hpp>
#include <tarn/libraries/LibraryCheck.hpp>
#include <tarn/libraries/PythonLibraries.hpp>
#include <tarn/text/Activity.hpp>
#include <tarn/text/Messages.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VLibrary.hpp>

#include <loam/Environment.hpp>
#include <loam/StringUtil.hpp>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <utility>

#include <dlfcn.h>
#include <unistd.h>

namespace Tarn {

namespace {

namespace fs = std::filesystem;

std::string join(const std::vector<std::string>& texts, const char* between)
{
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : between) + printable(text);
    return joined;
}

// Adds the folder as an absolute path, unless it is there already.
void addFolder(const std::string& folder, std::vector<std::string>& folders)
{
    std::error_code error;
    const fs::path absolute = fs::absolute(folder, error);
    std::string normal = (error ? fs::path(folder) : absolute).lexically_normal().string();
    if (normal.size() > 1 && normal.ends_with('/'))
        normal.pop_back();
    if (std::ranges::find(folders, normal) == folders.end())
        folders.push_back(std::move(normal));
}

// An exception from the initialization of a library must not pass through the C library, which
// holds a lock; it ends the program here, see Initialization. The C library declares that dlopen
// does not throw, so compilers would omit the handler without the volatile pointer.
void* initialized(const std::string& path) noexcept
{
    void* (*const volatile open)(const char*, int) = ::dlopen;
    return open(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

Loam::Result<void*> open(const std::string& path)
{
    if (const Loam::Result<void> fits = checkLibraryFile(path); !fits)
        return Loam::Failure{printable(path) + ": " + fits.reason()};
    const Activity activity{"loading", path.c_str()};
    void* const handle = initialized(path);
    if (!handle) {
        const char* const error = ::dlerror();
        return Loam::Failure{error ? error : path + ": no reason was given"};
    }
    if (Orla::VLibrary{handle}.registersTypes())
        return handle;
    ::dlclose(handle);
    return Loam::Failure{printable(path) + ": the library registers neither object types nor value types"};
}

Loam::Result<void*> openPython(const std::string& path)
{
    const Activity activity{"loading", path.c_str()};
    // The first folder is that of the installation, which has the package.
    const std::vector<std::string> folders = Libraries::searchPath();
    const std::string installed = folders.empty() ? std::string() : folders.front();
    if (const Loam::Result<void> loaded = loadPythonLibrary(path, installed); !loaded)
        return Loam::Failure{loaded.reason()};
    return nullptr;
}

// What all Libraries share.
struct Users {
    std::recursive_mutex mutex; // a library may load others while it is initialized
    std::vector<const Libraries*> all;
    std::vector<Libraries::Library> closing; // unloaded by their users, but still in memory
};

// Never destroyed: libraries may be unloaded while the program exits.
Users& users()
{
    static Users& users = *new Users;
    return users;
}

} // namespace

Libraries::Libraries(std::vector<std::string> folders)
    : m_folders{std::move(folders)}, m_thread{std::this_thread::get_id()}
{
    const std::lock_guard lock{users().mutex};
    users().all.push_back(this);
}

Libraries::~Libraries()
{
    const std::lock_guard lock{users().mutex};
    std::erase(users().all, this);
}

Loam::Result<void> Libraries::unload()
{
    Users& common = users();
    const std::lock_guard lock{common.mutex};
    common.closing.insert(common.closing.end(), m_libraries.begin(), m_libraries.end());
    m_libraries.clear();
    const auto isElsewhere = [](const Libraries* each) {
        return each->m_thread != std::this_thread::get_id() && !each->m_libraries.empty();
    };
    while (!common.closing.empty() && std::ranges::none_of(common.all, isElsewhere)) {
        const Library last = common.closing.back();
        common.closing.pop_back();
        const Activity activity{"unloading", last.name.c_str()};
        if (!last.pythonFile.empty()) {
            unloadPythonLibrary(last.pythonFile);
        } else if (isOpen(last.handle)) {
            ::dlclose(last.handle); // does not unload it
        } else if (const Loam::Result<void> unloaded = Orla::VLibrary{last.handle}.unload(); !unloaded) {
            common.closing.push_back(last);
            m_libraries = std::exchange(common.closing, {});
            return Loam::Failure{"library " + inQuotes(last.name) + " stays in memory because " + unloaded.reason()};
        }
    }
    return {};
}

std::string Libraries::fileName(const std::string& name)
{
    return isPythonLibrary(name) ? name : name + ".so";
}

bool Libraries::isOpen(void* handle)
{
    const auto isIn = [handle](const std::vector<Library>& libraries) {
        return std::ranges::find(libraries, handle, &Library::handle) != libraries.end();
    };
    return isIn(users().closing)
           || std::ranges::any_of(users().all, [&](const Libraries* each) { return isIn(each->m_libraries); });
}

Loam::Result<void> Libraries::load(const std::string& name)
{
    // Also for initializations, which replace the terminate handler.
    const std::lock_guard lock{users().mutex};
    if (std::ranges::find(m_libraries, name, &Library::name) != m_libraries.end())
        return {};
    const std::string title = "library " + inQuotes(name);
    const bool isPython = isPythonLibrary(name);
    const std::string file = fileName(name);
    std::vector<std::string> reasons;
    for (const std::string& folder : m_folders) {
        const std::string path = folder + '/' + file;
        if (::access(path.c_str(), F_OK) != 0)
            continue;
        const Initialization initialization{title};
        const Loam::Result<void*> handle = isPython ? openPython(path) : open(path);
        if (!handle) {
            reasons.push_back(handle.reason());
            continue;
        }
        m_libraries.push_back({name, *handle, isPython ? path : std::string()});
        if (!reasons.empty())
            Orla::VActionNotifier::Warning(title + " was loaded from " + printable(path)
                                           + " after other files failed to load: " + join(reasons, "; "));
        return {};
    }
    if (reasons.empty())
        return Loam::Failure{title + " was not found: no file " + printable(file) + " in " + join(m_folders, ", ")};
    return Loam::Failure{title + " cannot be loaded: " + join(reasons, "; ")};
}

std::vector<std::string> Libraries::loadAll(const std::vector<PlacedText>& names, Faults& faults)
{
    std::vector<PlacedText> wanted{{StandardLibrary, {}}};
    wanted.insert(wanted.end(), names.begin(), names.end());
    std::vector<std::string> missing;
    for (const auto& [name, place] : wanted) {
        if (std::ranges::find(missing, name) != missing.end())
            continue;
        if (const Loam::Result<void> loaded = load(name); !loaded) {
            faults.add(FaultKind::Library, place, loaded.reason());
            missing.push_back(name);
        }
    }
    return missing;
}

std::vector<std::string> Libraries::searchPath(const std::string& networkFolder)
{
    std::vector<std::string> folders = searchPath();
    addFolder(networkFolder, folders);
    addFolder(networkFolder + "/lib", folders);
    return folders;
}

std::vector<std::string> Libraries::searchPath()
{
    // The standard library must fit this code, so its own installation is first. This code may be
    // in a shared library, far from a program such as an interpreter.
    static const char inThisFile = 0;
    std::vector<std::string> wanted{installedFolder(Loam::getLibraryPath(&inThisFile)),
                                    Loam::getExecutableDir() + "/../lib/fathom"};
    Loam::StringUtil::split(Loam::getEnvString("TARN_LIBRARIES"), wanted, ':', false);
    std::vector<std::string> folders;
    for (const std::string& folder : wanted)
        addFolder(folder, folders);
    return folders;
}

std::string Libraries::installedFolder(const std::string& file)
{
    // The loader keeps the path by which it found a library, which may be a link elsewhere.
    std::error_code error;
    fs::path folder = fs::canonical(file, error).parent_path();
    if (error)
        folder = fs::path(file).parent_path();
    if (folder.parent_path().filename() == "lib")
        return (folder.parent_path() / "fathom").string();
    return (folder.parent_path() / "lib/fathom").string();
}

} // namespace Tarn
