#pragma once

#include <tarn/text/Faults.hpp>
#include <tarn/network/CanonicalNetwork.hpp>
#include <tarn/network/NetworkReading.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Tarn {

/// Reads a saved network and returns it in its canonical form.
///
/// Libraries stay in memory.
class Conversion {
public:
    /// Reads the file \p path, creates its objects, applies \p overrides and destroys the
    /// objects.
    /// \throw Loam::FileError if the file cannot be read.
    Conversion(const std::string& path, const std::vector<std::string>& overrides);

    /// If there are any faults, the network must not be written.
    const Faults& faults() const noexcept { return m_faults; }

    /// Missing libraries and types. Objects of these types are written unchanged.
    const Faults& unknown() const noexcept { return m_unknown; }

    /// Adapts file names to \p folder, in which the network will be saved. Returns messages
    /// for the user, one per line. A name that cannot be adapted is a fault.
    std::vector<std::string> moveTo(const std::string& folder);

    /// Returns the network as TOML.
    /// \pre There are no faults.
    std::string text() const;

    std::size_t objectCount() const noexcept { return m_canonical.file().objects.size(); }
    std::size_t connectionCount() const noexcept { return m_connectionCount; }

private:
    explicit Conversion(const NetworkReading& reading);

    Faults m_faults;
    Faults m_unknown;
    std::string m_folder;
    CanonicalNetwork m_canonical;
    std::size_t m_connectionCount = 0;
};

} // namespace Tarn
