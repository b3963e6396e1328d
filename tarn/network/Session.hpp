#pragma once

#include <tarn/Export.hpp>
#include <tarn/text/Faults.hpp>

#include <fathom/VValue.hpp>

#include <loam/Result.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orla {
class VNetwork;
}

namespace Tarn {

namespace Detail {
class SessionCore;
}

/// Changes to a network that is loaded.
struct LoadOptions {
    std::vector<std::string> overrides = {};     ///< each "OBJECT.SLOT=TEXT"; they replace texts of the file
    std::optional<std::string> chart = {};       ///< replaces the chart named in the file
    std::optional<std::uint64_t> stepLimit = {}; ///< the maximal number of steps
};

/// A network of objects, loaded from a saved one or built by the program.
///
///     Tarn::Session session = Tarn::Session::load("quakes.toml");
///     Tarn::Context context{session};
///     while (context.evaluateStep())
///         std::cout << *context.text("strong.count") << '\n';
///
/// Relative file names in the texts of inputs start at the session's folder; files that are read
/// may also be in the folders of the environment variable TARN_DATA. The working directory never
/// changes. Nothing is printed; `Orla::VActionNotifier` passes warnings on.
///
/// A slot is named by "OBJECT.SLOT". Functions that return a `Result` change nothing if they fail.
///
/// # Threads
///
/// Sessions are independent of each other. Several threads may use contexts of one session at the
/// same time. One thread at a time may use the session itself; evaluations in other threads wait
/// while it changes the network.
class TARN_API Session {
public:
    /// Creates a network without objects. Relative file names start at \p folder; empty means the
    /// current working directory.
    explicit Session(const std::string& folder = {});

    /// Loads the saved network \p path, its libraries, and its objects.
    /// \throw Loam::FileError if the file cannot be read.
    static Session load(const std::string& path, const LoadOptions& options = {});

    /// Loads the saved network \p text as if it were a file in \p folder. \p title names it in
    /// messages.
    static Session read(const std::string& text, const std::string& title, const std::string& folder,
                        const LoadOptions& options = {});

    /// A session that was moved from may only be destroyed or assigned to.
    Session(Session&&) noexcept;
    Session& operator=(Session&&) noexcept;

    /// Destroys the network, unless contexts still use it; the last of them destroys it then.
    /// Libraries that the network loaded are unloaded afterwards. If something from them is still
    /// in use, they stay in memory and a warning is issued.
    ~Session();

    /// Returns what is wrong with the saved network. If there are any faults, the network has no
    /// objects and cannot be changed.
    const Faults& faults() const noexcept;

    /// Returns the network that has the objects.
    Orla::VNetwork& network() const noexcept;

    /// Returns the names of all objects, including those that were created automatically, in the
    /// order of their announcement.
    std::vector<std::string> objects() const;

    /// Returns the titles of the columns of the table of results.
    std::vector<std::string> columns() const;

    /// Loads the object library \p name, from the folders that `tarn libraries` lists and that of
    /// the network.
    Loam::Result<void> loadLibrary(const std::string& name);

    /// Sets the initial value of an input for all new contexts, from a text in the form that saved
    /// networks use. Fails if the input is connected.
    Loam::Result<void> setText(std::string_view input, const std::string& text);

    /// Sets the initial value of an input for all new contexts. Fails if the input is connected or
    /// has values of another type.
    Loam::Result<void> setValue(std::string_view input, const Orla::StrongPtr<Orla::VValueBase>& value);

    template<class T>
    Loam::Result<void> set(std::string_view input, const T& value)
    {
        return setValue(input, Loam::makeStrong<Orla::VValue<T>>(value));
    }

    /// Returns the text of the initial value of an input.
    Loam::Result<std::string> text(std::string_view input) const;

    /// Creates, finishes and announces an object of a registered type.
    Loam::Result<void> create(const std::string& type, const std::string& name);

    /// Removes an object, its connections and its columns.
    Loam::Result<void> remove(const std::string& name);

    /// Renames an object. Connections, columns and later messages follow; texts of inputs that
    /// contain the name do not. Fails if the new name is empty, invalid or taken, if an existing
    /// reference would mean another object because names contain dots, or if the saved network
    /// sets or connects an input that another object named after an output of this one.
    Loam::Result<void> rename(const std::string& name, const std::string& newName);

    /// Connects an input to "OBJECT.OUTPUT" or "OBJECT.OUTPUT.MEMBER". Replaces an existing
    /// connection. Fails if the types differ or the component does not exist.
    Loam::Result<void> connect(const std::string& output, const std::string& input);

    /// Disconnects an input, which then has its initial value.
    Loam::Result<void> disconnect(const std::string& input);

    /// Adds a column with the values of an output to the table of results.
    Loam::Result<void> addColumn(const std::string& title, const std::string& output);

    /// Makes all objects follow the chart \p name in new contexts.
    Loam::Result<void> selectChart(const std::string& name);

    /// Returns the network as a saved one in its canonical form, as `tarn convert` writes it. Fails
    /// if the value of an input cannot be kept in a text.
    Loam::Result<std::string> savedText() const;

    /// Writes the saved network to a file, which is complete or left unchanged. Relative file names
    /// in the texts are not adapted, so \p path should be in the folder of the network.
    Loam::Result<void> save(const std::string& path) const;

    /// Internal: what contexts share with the session. Its type is not part of the interface.
    const std::shared_ptr<Detail::SessionCore>& core() const noexcept { return m_core; }

private:
    explicit Session(std::shared_ptr<Detail::SessionCore> core) noexcept;

    std::shared_ptr<Detail::SessionCore> m_core;
};

} // namespace Tarn
