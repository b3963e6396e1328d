#pragma once

#include <tarn/text/Faults.hpp>
#include <tarn/libraries/Libraries.hpp>
#include <tarn/network/NetworkBuilder.hpp>
#include <tarn/network/NetworkFile.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace Tarn {

/// A saved network that is read to be written again in its canonical form.
///
/// The folder of the file becomes the working directory, as when the network is
/// run. Libraries stay in memory.
class Conversion {
public:
    /// Reads the file \p path, makes its objects, sets \p overrides and lets the
    /// objects go.
    /// \throw Loam::FileError if the file cannot be read.
    Conversion(const std::string& path, const std::vector<std::string>& overrides);

    /// The network must not be written if there are any.
    const Faults& faults() const noexcept { return m_faults; }

    /// Libraries and types that are not there. Objects of these types are written as
    /// they stood.
    const Faults& unknown() const noexcept { return m_unknown; }

    /// Adapts names of files to the folder \p folder, where the network will stand.
    /// Returns what a user should know of it, one text a line. A name that cannot be
    /// adapted is a fault.
    std::vector<std::string> moveTo(const std::string& folder);

    /// The network as TOML.
    /// \pre There are no faults.
    std::string text() const;

    std::size_t objectCount() const noexcept { return m_file.objects.size(); }
    std::size_t connectionCount() const noexcept { return m_connectionCount; }

private:
    // Which of the texts of which object are texts for the object too.
    struct HeldText {
        std::size_t object;
        std::size_t text;
    };

    std::vector<std::string> loadLibraries(const std::vector<PlacedText>& names);
    void makeCanonical(const NetworkInputs& inputs);
    void keepValue(std::size_t object, const NetworkInputs::Input& input);

    Faults m_faults;
    Faults m_unknown;
    std::string m_folder;
    Libraries m_libraries;
    NetworkFile m_file;
    std::vector<HeldText> m_heldTexts;
    std::size_t m_connectionCount = 0;
};

} // namespace Tarn
