#include <tarn/run/UsedFiles.hpp>

#include <trellis/VNetwork.hpp>
#include <trellis/VObject.hpp>

#include <filesystem>
#include <vector>

namespace Tarn {

namespace {

// Returns the paths at which the object looks for the file, up to the one where it is.
std::vector<std::string> candidates(const Orla::VObject& object, const std::string& name, const std::string& path)
{
    const Orla::VNetwork* const network = object.network();
    if (!network || name.empty() || std::filesystem::path(name).is_absolute())
        return {path};
    std::vector<std::string> paths{network->resolve(name)};
    const bool isMissing = path == paths.front() && !FileState::of(path).exists;
    if (path == paths.front() && !isMissing)
        return paths;
    for (const std::string& folder : network->dataFolders()) {
        paths.push_back((std::filesystem::path(folder) / name).string());
        if (paths.back() == path)
            break;
    }
    return paths;
}

} // namespace

void UsedFiles::reads(const Orla::VObject& object, const std::string& name, const std::string& path)
{
    const std::vector<std::string> paths = candidates(object, name, path);
    const std::lock_guard lock{m_mutex};
    for (const std::string& each : paths) {
        m_read[&object].insert(each);
        if (!m_states.contains(each))
            m_states.emplace(each, FileState::of(each));
    }
}

void UsedFiles::writes(const Orla::VObject&, const std::string& path)
{
    const std::lock_guard lock{m_mutex};
    m_written.insert(path);
}

void UsedFiles::forget(const Orla::VObject& object)
{
    const std::lock_guard lock{m_mutex};
    m_read.erase(&object);
}

void UsedFiles::clear()
{
    const std::lock_guard lock{m_mutex};
    m_read.clear();
    m_states.clear();
    m_written.clear();
}

std::map<std::string, FileState> UsedFiles::files() const
{
    const std::lock_guard lock{m_mutex};
    std::map<std::string, FileState> files;
    for (const auto& [object, paths] : m_read) {
        for (const std::string& path : paths) {
            if (!m_written.contains(path))
                files.emplace(path, m_states.at(path));
        }
    }
    return files;
}

void UsedFiles::acceptState(const std::string& path)
{
    const std::lock_guard lock{m_mutex};
    if (const auto state = m_states.find(path); state != m_states.end())
        state->second = FileState::of(path);
}

bool UsedFiles::hasRead(const Orla::VObject& object, const std::string& path) const
{
    const std::lock_guard lock{m_mutex};
    const auto read = m_read.find(&object);
    return read != m_read.end() && read->second.contains(path);
}

} // namespace Tarn
