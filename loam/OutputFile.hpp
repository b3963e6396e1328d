#pragma once

#include <loam/Export.hpp>
#include <loam/FileError.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace Loam {

/// Writes a result. A file appears complete or not at all: it is written in the folder
/// of its target, without a name if the system supports that, and renamed when it is
/// complete. If the process is killed, the target is unchanged and an unnamed file
/// disappears.
class LOAM_API OutputFile {
public:
    /// Writes to the file \p path. Follows links; anything but a regular file, such as a
    /// pipe or a device, is written directly.
    /// \throw FileError
    explicit OutputFile(const std::string& path);

    /// Writes to the open stream \p descriptor, called \p name in messages.
    /// \throw FileError if \p descriptor is negative, as for a closed stream.
    OutputFile(int descriptor, const std::string& name);

    /// Leaves the target file unchanged unless `commit` succeeded.
    ~OutputFile();

    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// \throw FileError
    void write(std::string_view bytes);

    /// Passes all bytes written so far to the system.
    /// \throw FileError
    void flush();

    /// Completes the output; a file replaces its target.
    /// \throw FileError; the target file is then unchanged.
    void commit();

    /// Removes the temporary files of all outputs of the process. For programs that must
    /// exit immediately: it may be called in a signal handler, and the outputs are
    /// unusable afterwards. Outputs of a process from which this one was forked stay.
    static void removeUnfinished() noexcept;

    /// Lets `saveUnfinished` complete this output: it writes \p ending, and a file then appears
    /// as \p path, which may be its target. A stream ignores \p path.
    void saveIfUnfinished(const std::string& path, const std::string& ending);

    /// Completes the outputs for which `saveIfUnfinished` was called, as far as they have been
    /// written; errors are ignored. For programs that must exit immediately: it may be called in
    /// a signal handler, and the outputs are unusable afterwards. Outputs of a process from which
    /// this one was forked are not completed.
    static void saveUnfinished() noexcept;

    /// Returns true if the output is written directly to its target.
    bool isStream() const noexcept { return !m_isFile; }

private:
    void openBeside(unsigned mode, bool keepMode);
    void discard() noexcept;
    void save() noexcept;
    void saveNoLonger() noexcept;

    std::string m_name;      // in messages
    std::string m_path;      // of the target
    std::string m_temporary; // of the temporary file; empty while it has no name
    std::string m_pending;
    std::string m_ending; // this and the next three are for `save`, which must not allocate
    std::string m_savedPath;
    std::string m_savedName; // temporary, beside the saved path
    std::string m_descriptorPath;
    std::size_t m_place = 0;      // index among the unfinished files
    std::size_t m_savedPlace = 0; // index among the files to save
    int m_descriptor = -1;
    int m_process = 0;      // that called saveIfUnfinished
    bool m_isSaved = false; // is among the files to save
    bool m_owned = false;
    bool m_isFile = false;
};

} // namespace Loam
