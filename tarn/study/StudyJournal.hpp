#pragma once

#include <tarn/study/CaseResult.hpp>

#include <string>
#include <utility>
#include <vector>

namespace Tarn {

/// The complete cases of a study in a file, from which an interrupted study is resumed.
///
/// The first line identifies the study; each further line is the record of a case, in the order of
/// completion. A record is written at once, so the file is usable after a crash, too. One process
/// at a time may use the file.
class StudyJournal {
public:
    /// Opens the file \p path, or creates it. \p identity is a text without line breaks on which
    /// the results depend. An incomplete record at the end, from a process that was killed, is
    /// removed.
    /// \throw Loam::FileError if the file cannot be used: another process uses it, it is not a
    /// journal, it belongs to another study, or a record is damaged. It is unchanged then.
    StudyJournal(const std::string& path, const std::string& identity);

    /// Closes the file. Removes it if it has no records.
    ~StudyJournal();

    StudyJournal(const StudyJournal&) = delete;
    StudyJournal& operator=(const StudyJournal&) = delete;

    /// Returns the results that were in the file, of different cases, in the order of completion.
    const std::vector<CaseResult>& results() const noexcept { return m_results; }

    /// Returns them once.
    std::vector<CaseResult> takeResults() noexcept { return std::exchange(m_results, {}); }

    /// Adds the result of a case.
    /// \throw Loam::FileError
    void add(const CaseResult& result);

    /// Removes the file.
    void remove() noexcept;

private:
    void lock();
    void readRecords(const std::string& identity);
    void write(const std::string& text);

    std::string m_path;
    int m_descriptor = -1;
    std::vector<CaseResult> m_results;
    bool m_hasRecords = false;
};

} // namespace Tarn
