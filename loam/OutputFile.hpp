#pragma once

#include <loam/Export.hpp>
#include <loam/FileError.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace Loam {

/// Receives results. A file appears as a whole or not at all: it is written
/// beside its place, without a name where the system can do that, and renamed when
/// it is complete. So also a process that is killed leaves the file as it was, and
/// nothing beside it.
class LOAM_API OutputFile {
public:
    /// A result in the file \p path. A link is followed; what is no file, as a
    /// pipe or a device, is written directly.
    /// \throw FileError
    explicit OutputFile(const std::string& path);

    /// A result in the open stream \p descriptor, which messages call \p name.
    /// \throw FileError if the number is negative: the stream was closed.
    OutputFile(int descriptor, const std::string& name);

    /// Without `commit` the file is as it was before.
    ~OutputFile();

    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// \throw FileError
    void write(std::string_view bytes);

    /// Hands what was written to the system.
    /// \throw FileError
    void flush();

    /// Ends the output; a file takes its place.
    /// \throw FileError and the file is as it was before.
    void commit();

    /// Removes what all outputs of the process have written beside their places so
    /// far. For programs that have to end at once: it may be called in a signal
    /// handler, and the outputs can do nothing any more.
    static void removeUnfinished() noexcept;

    /// True if the output goes to its place piece by piece.
    bool isStream() const noexcept { return !m_isFile; }

private:
    void openBeside(unsigned mode, bool keepMode);
    void discard() noexcept;

    std::string m_name;      // in messages
    std::string m_path;      // of the file in the end
    std::string m_temporary; // of the file until then; empty as long as it has no name
    std::string m_pending;
    std::size_t m_place = 0; // among the unfinished files
    int m_descriptor = -1;
    bool m_owned = false;
    bool m_isFile = false;
};

} // namespace Loam
