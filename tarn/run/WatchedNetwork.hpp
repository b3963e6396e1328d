#pragma once

#include <tarn/network/NetworkContent.hpp>
#include <tarn/network/NetworkDifferences.hpp>
#include <tarn/network/NetworkReading.hpp>
#include <tarn/network/Session.hpp>
#include <tarn/run/Context.hpp>
#include <tarn/run/FileWatcher.hpp>
#include <tarn/run/UsedFiles.hpp>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Tarn {

/// A saved network and a context that follow the files from which they come: the saved network
/// itself, the libraries that it names, and the files that its objects read.
///
/// Results that do not depend on a change are kept: only the objects that a change reaches run
/// again and, in a network with several time steps, those that depend on the time. They start as
/// in a new context, so the results are those of a new run. The network is loaded again if its
/// file differs in more than the values of inputs, if a library changed, if the change reaches an
/// object that keeps state in its members, and if an evaluation added or removed objects.
class WatchedNetwork {
public:
    /// The consequences of a change.
    struct Response {
        std::vector<std::string> changes; ///< what changed, for a message
        std::vector<std::string> errors;  ///< reasons why a change could not be followed
        std::optional<Faults> faults;     ///< what is wrong with the changed network
        bool mustEvaluate = false;        ///< objects are due
    };

    WatchedNetwork(const std::string& path, const LoadOptions& options);

    /// Loads the network. Returns its faults; `isLoaded` is false if there are any.
    /// \throw Loam::FileError if the file cannot be read.
    const Faults& load();

    bool isLoaded() const noexcept { return m_context.has_value(); }

    /// \pre `isLoaded()`
    const Session& session() const noexcept { return *m_session; }

    /// Is ready for its first step.
    /// \pre `isLoaded()`
    Context& context() noexcept { return *m_context; }

    /// Returns the files to watch, with the states in which they were last used.
    std::map<std::string, FileState> files() const;

    /// Follows the changes of the files \p paths. A network that cannot be read or has faults
    /// changes nothing. If a library changed and the network cannot be loaded again, no network
    /// is loaded until another change repairs it.
    Response apply(const std::vector<std::string>& paths);

    /// Prepares the context for another evaluation that no change asks for.
    /// \pre `isLoaded()`
    void startOver();

    /// Does what need not wait for the next change. Call it after each evaluation.
    void prepare();

private:
    using Objects = std::vector<Orla::StrongPtr<Orla::VObject>>;
    using States = std::map<std::string, FileState>;

    States librariesOf(const NetworkSource& source) const;
    Session read(const NetworkSource& source) const;
    void adopt(Session&& session, const NetworkSource& source, const States& libraries);
    void close(Response& response);
    void loadAgain(Response& response);
    bool readNetwork(Response& response, Objects& changed);
    bool setInputs(const Session& next, const std::vector<NetworkDifference>& differences, Response& response,
                   Objects& changed);
    void addReaders(const std::string& path, Objects& objects) const;
    bool restart(Objects objects);
    std::string shortName(const std::string& path) const;

    const std::string m_path;
    const LoadOptions m_options;
    UsedFiles m_used;
    std::optional<Session> m_session;
    std::optional<Context> m_context;
    std::optional<NetworkSource> m_source;   // of the loaded network
    std::optional<NetworkContent> m_content; // of the loaded network; computed when it is needed
    std::vector<std::string> m_objects;      // after loading
    bool m_mustReload = false;               // an evaluation added or removed objects
    States m_libraries;                      // the files that the loaded network names
    States m_wantedLibraries;                // those that a network with faults names
    FileState m_state;                       // of the network's file
    Faults m_faults{{}};
};

} // namespace Tarn
