#pragma once

#include <tarn/libraries/Libraries.hpp>
#include <tarn/network/NetworkFile.hpp>
#include <tarn/network/NetworkInputs.hpp>
#include <tarn/text/Faults.hpp>

#include <loam/Result.hpp>

#include <string>
#include <vector>

namespace Tarn {

/// The text of a saved network.
struct NetworkSource {
    /// \throw Loam::FileError if the file cannot be read.
    explicit NetworkSource(const std::string& thePath);

    std::string path; ///< as the user wrote it
    std::string folder;
    std::string text;
};

/// A saved network whose objects were created, set and connected as in a run, and destroyed
/// again. The values of their inputs remain.
///
/// Libraries stay in memory until `unload` is called.
class NetworkReading {
public:
    /// Loads the libraries of \p source, creates its objects and applies \p overrides
    /// (`OBJECT.SLOT=TEXT`).
    NetworkReading(const NetworkSource& source, const std::vector<std::string>& overrides);

    /// If there are any faults, the network was not fully understood.
    const Faults& faults() const noexcept { return m_faults; }

    /// Missing libraries and types. The content of objects of these types is in `kept`.
    const Faults& unknown() const noexcept { return m_unknown; }

    const std::string& folder() const noexcept { return m_folder; }
    const NetworkFile& file() const noexcept { return m_file; }
    const NetworkInputs& inputs() const noexcept { return m_inputs; }

    /// Releases the values and unloads the libraries. Fails if something of them is still in
    /// use; they then stay in memory.
    Loam::Result<void> unload();

    /// Returns true if a library that is loaded has the object type \p type.
    static bool isKnownType(const std::string& type);

private:
    Faults m_faults;
    Faults m_unknown;
    std::string m_folder;
    Libraries m_libraries;
    NetworkFile m_file;
    NetworkInputs m_inputs;
};

} // namespace Tarn
