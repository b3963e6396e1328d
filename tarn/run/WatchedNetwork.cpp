#include <tarn/run/WatchedNetwork.hpp>

#include <tarn/libraries/Libraries.hpp>
#include <tarn/network/ChoiceCheck.hpp>
#include <tarn/network/NetworkParser.hpp>
#include <tarn/network/SessionCore.hpp>
#include <tarn/run/CrashReport.hpp>
#include <tarn/run/Reach.hpp>
#include <tarn/text/Messages.hpp>

#include <trellis/VActionNotifier.hpp>
#include <trellis/VScheduler.hpp>

#include <loam/FileError.hpp>

#include <algorithm>
#include <filesystem>
#include <utility>

#include <dlfcn.h>

namespace Tarn {

namespace {

using Kind = NetworkDifference::Kind;
using Orla::StrongPtr;

// More inputs are only counted.
constexpr std::size_t MostInputs = 3;

bool isValue(const std::optional<NetworkDifference::Side>& side)
{
    return !side || (side->reads.empty() && !side->isAutomatic);
}

// The libraries of the network must be in memory.
std::optional<NetworkContent> contentOf(const NetworkSource& source, const std::vector<std::string>& overrides,
                                        const NetworkContent& like)
{
    NetworkReading reading{source, overrides};
    std::optional<NetworkContent> content;
    Faults faults = reading.faults();
    if (faults.empty() && reading.unknown().empty())
        content = NetworkContent::of(reading, faults, like);
    if (!faults.empty())
        content.reset();
    if (const Loam::Result<void> unloaded = reading.unload(); !unloaded)
        Orla::VActionNotifier::Warning("The " + unloaded.reason());
    return content;
}

bool isInMemory(const std::string& library)
{
    void* const handle = ::dlopen(library.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    return handle && ::dlclose(handle) == 0;
}

} // namespace

WatchedNetwork::WatchedNetwork(const std::string& path, const LoadOptions& options) : m_path{path}, m_options{options}
{
}

const Faults& WatchedNetwork::load()
{
    m_state = FileState::of(m_path);
    const NetworkSource source{m_path};
    const States libraries = librariesOf(source);
    Session session = read(source);
    m_faults = session.faults();
    if (m_faults.empty())
        adopt(std::move(session), source, libraries);
    else
        m_wantedLibraries = libraries;
    return m_faults;
}

std::map<std::string, FileState> WatchedNetwork::files() const
{
    std::map<std::string, FileState> files = m_used.files();
    files.insert(m_libraries.begin(), m_libraries.end());
    files.insert(m_wantedLibraries.begin(), m_wantedLibraries.end());
    files.insert_or_assign(m_path, m_state);
    return files;
}

// Returns the files in which the named libraries are looked for, up to the first one that exists.
WatchedNetwork::States WatchedNetwork::librariesOf(const NetworkSource& source) const
{
    States files;
    Faults ignored{m_path};
    for (const PlacedText& name : parseNetwork(source.text, ignored).libraries) {
        for (const std::string& folder : Libraries::searchPath(source.folder)) {
            const std::string path = folder + '/' + name.text + ".so";
            const FileState state = FileState::of(path);
            files.emplace(path, state);
            if (state.exists)
                break;
        }
    }
    return files;
}

Session WatchedNetwork::read(const NetworkSource& source) const
{
    return Session::read(source.text, source.path, source.folder, m_options);
}

void WatchedNetwork::adopt(Session&& session, const NetworkSource& source, const States& libraries)
{
    m_context.reset();
    m_used.clear();
    m_content.reset();
    m_session = std::move(session);
    m_source = source;
    // A library that was in memory is still the one that was loaded.
    States former = std::exchange(m_libraries, libraries);
    for (auto& [path, state] : m_libraries) {
        if (const auto known = former.find(path); known != former.end())
            state = known->second;
    }
    m_wantedLibraries.clear();
    m_objects = m_session->objects();
    m_mustReload = false;
    m_session->network().setFileObserver(&m_used);
    m_context.emplace(*m_session, m_path);
    CrashReport::watchForExit();
}

// Libraries are unloaded with the session that uses them.
void WatchedNetwork::close(Response& response)
{
    m_context.reset();
    m_content.reset();
    m_session.reset();
    m_used.clear();
    for (const auto& [path, state] : std::exchange(m_libraries, {})) {
        if (state.exists && isInMemory(path))
            response.errors.push_back("library " + inQuotes(path)
                                      + " stays in memory; its new version is loaded when tarn starts again");
    }
}

WatchedNetwork::Response WatchedNetwork::apply(const std::vector<std::string>& paths)
{
    Response response;
    std::string libraries;
    bool isNetworkChanged = false;
    for (const std::string& path : paths) {
        const FileState state = FileState::of(path);
        m_used.acceptState(path);
        if (const auto library = m_libraries.find(path); library != m_libraries.end()) {
            library->second = state;
            // A library that is missing is being built.
            if (state.exists)
                libraries += (libraries.empty() ? "" : ", ") + shortName(path);
        } else if (const auto wanted = m_wantedLibraries.find(path); wanted != m_wantedLibraries.end()) {
            wanted->second = state;
            isNetworkChanged = true;
        } else if (path == m_path) {
            isNetworkChanged = true;
        }
    }
    if (!libraries.empty()) {
        response.changes.push_back(libraries + " changed, loaded again");
        close(response);
        loadAgain(response);
        return response;
    }
    Objects changed;
    if ((isNetworkChanged && readNetwork(response, changed)) || !m_context)
        return response;
    for (const std::string& path : paths) {
        const std::size_t before = changed.size();
        addReaders(path, changed);
        if (changed.size() > before)
            response.changes.push_back(shortName(path) + " changed");
    }
    if (changed.empty())
        return response;
    response.mustEvaluate = true;
    if (!restart(changed))
        adopt(read(*m_source), NetworkSource{*m_source}, States{m_libraries});
    return response;
}

// Reads the file again. Without a network, this is the only way to get one.
void WatchedNetwork::loadAgain(Response& response)
{
    try {
        if (const Faults& faults = load(); !faults.empty())
            response.faults = faults;
        else
            response.mustEvaluate = true;
    } catch (const Loam::FileError& error) {
        response.errors.push_back(error.what());
    }
}

// Returns true if the network was loaded again. Otherwise adds the objects whose inputs changed.
bool WatchedNetwork::readNetwork(Response& response, Objects& changed)
{
    if (!m_session) {
        response.changes.push_back("loaded again");
        loadAgain(response);
        return true;
    }
    m_state = FileState::of(m_path);
    std::optional<NetworkSource> source;
    try {
        source.emplace(m_path);
    } catch (const Loam::FileError& error) {
        response.errors.push_back(error.what());
        return false;
    }
    const States libraries = librariesOf(*source);
    Session next = read(*source);
    m_wantedLibraries.clear();
    if (!next.faults().empty()) {
        response.faults = next.faults();
        for (const auto& [path, state] : libraries) {
            if (!m_libraries.contains(path))
                m_wantedLibraries.emplace(path, state);
        }
        return false;
    }
    if (!m_content)
        m_content = contentOf(*m_source, m_options.overrides, {});
    std::optional<NetworkContent> content;
    if (m_content)
        content = contentOf(*source, m_options.overrides, *m_content);
    std::vector<NetworkDifference> differences;
    if (content) {
        differences = differencesBetween(*m_content, *content);
        if (m_options.chart)
            std::erase_if(differences, [](const NetworkDifference& each) { return each.kind == Kind::Chart; });
    }
    if (content && !m_mustReload && setInputs(next, differences, response, changed)) {
        m_source = std::move(source);
        m_content = std::move(content);
        return false;
    }
    response.changes.push_back((content ? counted(differences.size(), "difference") : "changed") + ", loaded again");
    response.mustEvaluate = true;
    adopt(std::move(next), *source, libraries);
    return true;
}

// Sets the inputs that have other values in `next`. Returns false if there are other differences,
// or an input that a run checks when it begins.
bool WatchedNetwork::setInputs(const Session& next, const std::vector<NetworkDifference>& differences,
                               Response& response, Objects& changed)
{
    std::vector<std::pair<std::string, StrongPtr<Orla::VSlot>>> inputs;
    for (const NetworkDifference& each : differences) {
        if (each.kind != Kind::Input || !isValue(each.before) || !isValue(each.after))
            return false;
        const std::string name = each.object + '.' + each.part;
        const Loam::Result<StrongPtr<Orla::VSlot>> input = next.core()->findInput(name);
        if (!input || isSelection((*input)->type()))
            return false;
        inputs.emplace_back(name, *input);
    }
    std::string names;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const auto& [name, input] = inputs[i];
        const Loam::Result<StrongPtr<Orla::VSlot>> own = m_session->core()->findInput(name);
        if (!own || !m_context->setValue(name, input->ownParameter()->newValue()))
            return false;
        changed.push_back(Loam::WeakPtrImpl<Orla::VObject>((*own)->container()->object()).lock());
        if (i < MostInputs)
            names += (i == 0 ? "" : ", ") + printable(name);
    }
    if (inputs.size() > MostInputs)
        names += " and " + counted(inputs.size() - MostInputs, "more input");
    response.changes.push_back(inputs.empty() ? "no differences" : names + " changed");
    return true;
}

void WatchedNetwork::addReaders(const std::string& path, Objects& objects) const
{
    m_session->network().forEachObject<Orla::VObject>([&](const StrongPtr<Orla::VObject>& object) {
        if (m_used.hasRead(*object, path))
            objects.push_back(object);
    });
}

void WatchedNetwork::startOver()
{
    if (!restart({}))
        adopt(read(*m_source), NetworkSource{*m_source}, States{m_libraries});
}

// Restarts the objects that run in the next evaluation. Returns false if only a new network has the
// right results.
bool WatchedNetwork::restart(Objects objects)
{
    if (m_mustReload)
        return false;
    const Orla::VNetwork::Scope scope{m_session->network()};
    const TimeProvider provider = m_session->core()->timeProvider();
    const Loam::Result<std::uint64_t> steps = m_context->stepCount();
    if (provider && !(steps && *steps == 1))
        objects.emplace_back(m_session->network().find(provider.name()));
    const Objects reached = reachedFrom(std::move(objects));
    if (std::ranges::any_of(reached, [](const auto& object) { return object->isStateful(); }))
        return false;
    for (const StrongPtr<Orla::VObject>& object : reached) {
        m_used.forget(*object);
        Orla::VScheduler::restart(object, m_context->pool());
    }
    m_context->startOver();
    return true;
}

void WatchedNetwork::prepare()
{
    if (!m_session)
        return;
    m_mustReload = m_session->objects() != m_objects;
    if (!m_content)
        m_content = contentOf(*m_source, m_options.overrides, {});
}

// Relative to the folder of the network if that is shorter.
std::string WatchedNetwork::shortName(const std::string& path) const
{
    const std::string normal = std::filesystem::path(path).lexically_normal().string();
    if (!m_source)
        return printable(normal);
    const std::string relative = std::filesystem::path(normal).lexically_relative(m_source->folder).string();
    return printable(relative.empty() || relative.size() >= normal.size() ? normal : relative);
}

} // namespace Tarn
