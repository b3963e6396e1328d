#include <tarn/libraries/LibraryFiles.hpp>

#include <tarn/libraries/Libraries.hpp>
#include <tarn/libraries/PythonLibraries.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VValueCreator.hpp>

#include <loam/Environment.hpp>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <typeinfo>

#include <unistd.h>

namespace Tarn {

namespace {

namespace fs = std::filesystem;

constexpr char Ending[] = ".so";

// Returns the names of the libraries in the folder, in alphabetical order.
std::vector<std::string> namesIn(const std::string& folder)
{
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string file = entry->path().filename().string();
        if (file.ends_with(Ending) && file.size() + 1 > sizeof Ending)
            names.push_back(file.substr(0, file.size() + 1 - sizeof Ending));
    }
    std::ranges::sort(names);
    return names;
}

LibraryFile fileOf(const std::string& name, const std::string& path)
{
    return {.name = name, .path = path, .shadowedBy = {}, .loading = {}, .objectTypes = {}, .valueTypes = {}};
}

const std::type_info& typeOf(const Orla::VObjectCreator& creator)
{
    return creator.objectType();
}

const std::type_info& typeOf(const Orla::VValueCreator& creator)
{
    return creator.valueType();
}

// Returns the names that a file registered itself, not through another object library beside it
// that it needs.
template<class Creator>
std::vector<std::string> added(const std::vector<std::string>& before, const fs::path& file)
{
    std::vector<std::string> added;
    std::ranges::set_difference(Creator::names(), before, std::back_inserter(added));
    std::erase_if(added, [&file](const std::string& name) {
        const Orla::StrongPtr<Creator> creator = Creator::find(name);
        const fs::path owner = creator ? Loam::getLibraryPath(&typeOf(*creator)) : std::string();
        std::error_code error;
        return owner.filename() != file.filename() && fs::equivalent(owner.parent_path(), file.parent_path(), error);
    });
    return added;
}

void lookInto(LibraryFile& file, const std::string& folder)
{
    const std::vector<std::string> objectTypes = Orla::VObjectCreator::names();
    const std::vector<std::string> valueTypes = Orla::VValueCreator::names();
    Libraries libraries{{folder}};
    file.loading = libraries.load(file.name);
    file.objectTypes = added<Orla::VObjectCreator>(objectTypes, file.path);
    // A file in Python registers no types of values; those of its package are the framework's.
    if (!isPythonLibrary(file.name))
        file.valueTypes = added<Orla::VValueCreator>(valueTypes, file.path);
    if (const Loam::Result<void> unloaded = libraries.unload(); !unloaded)
        Orla::VActionNotifier::Warning("The " + unloaded.reason());
}

} // namespace

std::vector<LibraryFile> findLibraryFiles(const std::vector<std::string>& folders,
                                          const std::vector<std::string>& names)
{
    std::vector<LibraryFile> files;
    for (const std::string& folder : folders) {
        for (const std::string& name : names.empty() ? namesIn(folder) : names) {
            const std::string path = folder + '/' + Libraries::fileName(name);
            const auto isSame = [&](const LibraryFile& each) { return each.path == path; };
            if (::access(path.c_str(), F_OK) != 0 || std::ranges::any_of(files, isSame))
                continue;
            LibraryFile file = fileOf(name, path);
            const auto first =
                std::ranges::find_if(files, [&](const LibraryFile& each) { return each.name == name && each.loading; });
            if (first != files.end())
                file.shadowedBy = first->path;
            lookInto(file, folder);
            files.push_back(std::move(file));
        }
    }
    for (const std::string& name : names) {
        if (std::ranges::find(files, name, &LibraryFile::name) != files.end())
            continue;
        LibraryFile file = fileOf(name, {});
        file.loading = Libraries{folders}.load(name);
        files.push_back(std::move(file));
    }
    return files;
}

} // namespace Tarn
