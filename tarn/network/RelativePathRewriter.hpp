#pragma once

#include <optional>
#include <string>

namespace Tarn {

/// Rewrites file names, which are relative to the folder of their network, for a network
/// that is written to another folder.
class RelativePathRewriter {
public:
    /// Rewrites nothing: the folder stays the same.
    RelativePathRewriter() = default;

    /// \p from and \p to are folders. Rewrites nothing if they are the same or if one of them
    /// cannot be found.
    RelativePathRewriter(const std::string& from, const std::string& to);

    /// Returns true if the folders differ.
    bool isNeeded() const noexcept { return !m_from.empty(); }

    /// Returns true if \p text names a file or folder when resolved in the old folder, but not
    /// the same one when resolved in the new folder.
    bool concerns(const std::string& text) const;

    /// Returns the name that \p text needs in the new folder. Returns nothing if `concerns` is
    /// false, and for a folder: short texts that match a folder are rarely meant as its name.
    std::optional<std::string> moved(const std::string& text) const;

private:
    std::string m_from; // absolute and without links
    std::string m_to;
};

} // namespace Tarn
