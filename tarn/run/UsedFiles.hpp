#pragma once

#include <tarn/run/FileWatcher.hpp>

#include <trellis/VFileObserver.hpp>

#include <map>
#include <mutex>
#include <set>
#include <string>

namespace Tarn {

/// Records which files the objects of a network read and write, from the paths that they ask for.
///
/// For a name that is searched in several folders, records the files in all folders before the one
/// where it was found, too: if such a file appears, the object would read it instead.
class UsedFiles final : public Orla::VFileObserver {
public:
    void reads(const Orla::VObject& object, const std::string& name, const std::string& path) override;
    void writes(const Orla::VObject& object, const std::string& path) override;

    /// Forgets the files that \p object read. Call it before the object reads all of them again.
    void forget(const Orla::VObject& object);

    /// Forgets everything.
    void clear();

    /// Returns the files that were read, each with its state before it was read first, or since
    /// `acceptState`. Files that objects also write are left out: each evaluation would cause the
    /// next one.
    std::map<std::string, FileState> files() const;

    /// Replaces the state of the file \p path by the present one.
    void acceptState(const std::string& path);

    /// Returns true if \p object read the file \p path.
    bool hasRead(const Orla::VObject& object, const std::string& path) const;

private:
    mutable std::mutex m_mutex; // objects run concurrently
    std::map<const Orla::VObject*, std::set<std::string>> m_read;
    std::map<std::string, FileState> m_states;
    std::set<std::string> m_written;
};

} // namespace Tarn
