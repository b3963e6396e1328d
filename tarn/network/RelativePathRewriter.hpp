#pragma once

#include <optional>
#include <string>

namespace Tarn {

/// Names of files, which count from the folder of the network that holds them, for
/// a network that is written to another folder.
class RelativePathRewriter {
public:
    /// No other folder: nothing changes.
    RelativePathRewriter() = default;

    /// \p from and \p to are folders. Nothing changes if they are the same one, or
    /// if one of them cannot be found.
    RelativePathRewriter(const std::string& from, const std::string& to);

    /// Whether the folders differ.
    bool isNeeded() const noexcept { return !m_from.empty(); }

    /// Whether \p text is the name of a file or folder that is found from the old
    /// folder, and from the new one is not, or is another one.
    bool concerns(const std::string& text) const;

    /// The name that \p text needs in the new folder. Nothing if it does not concern
    /// \p text, and for a folder: short texts that name one are rarely meant so.
    std::optional<std::string> moved(const std::string& text) const;

private:
    std::string m_from; // absolute and without links
    std::string m_to;
};

} // namespace Tarn
