#include <tarn/study/StudyJournal.hpp>

#include <tarn/study/CaseRecord.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/ReadFile.hpp>

#include <loam/FileError.hpp>
#include <loam/ScopeExit.hpp>

#include <algorithm>
#include <cerrno>
#include <map>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Tarn {

namespace {

[[noreturn]] void fail(const std::string& what)
{
    throw Loam::FileError{what, errno};
}

} // namespace

StudyJournal::StudyJournal(const std::string& path, const std::string& identity)
    : m_path{path}, m_descriptor{::open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666)}
{
    if (m_descriptor < 0)
        fail("cannot open " + printable(path));
    try {
        lock();
        readRecords(identity);
    } catch (...) {
        ::close(m_descriptor);
        throw;
    }
}

StudyJournal::~StudyJournal()
{
    if (!m_hasRecords)
        remove();
    ::close(m_descriptor);
}

void StudyJournal::lock()
{
    if (::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0)
        return;
    if (errno == EWOULDBLOCK)
        throw Loam::FileError{printable(m_path) + " is in use by another process that evaluates this study"};
    fail("cannot lock " + printable(m_path));
}

void StudyJournal::readRecords(const std::string& identity)
{
    const std::string text = readFile(m_path);
    const std::size_t complete = text.rfind('\n') + 1; // npos + 1 is 0
    const std::string first = identity + '\n';
    if (complete == 0 && first.starts_with(text)) {
        if (::ftruncate(m_descriptor, 0) != 0)
            fail("cannot change " + printable(m_path));
        write(first);
        return;
    }
    if (!text.starts_with(first))
        throw Loam::FileError{printable(m_path)
                              + " belongs to another study: the network, the options or the varied texts differ;"
                                " remove it to begin again"};
    std::map<std::uint64_t, std::size_t> places; // of the last record of each case
    std::size_t line = 1;
    for (std::size_t begin = first.size(); begin < complete;) {
        const std::size_t end = text.find('\n', begin);
        ++line;
        Loam::Result<CaseResult> result = resultOf(std::string_view(text).substr(begin, end - begin));
        if (!result)
            throw Loam::FileError{printable(m_path) + ":" + std::to_string(line)
                                  + ": the record of a case is damaged: " + result.reason()};
        const auto [place, isNew] = places.emplace(result->number, m_results.size());
        if (isNew)
            m_results.push_back(*std::move(result));
        else
            m_results[place->second] = *std::move(result);
        begin = end + 1;
    }
    m_hasRecords = !m_results.empty();
    if (complete < text.size() && ::ftruncate(m_descriptor, static_cast<::off_t>(complete)) != 0)
        fail("cannot change " + printable(m_path));
}

void StudyJournal::write(const std::string& text)
{
    for (std::size_t done = 0; done < text.size();) {
        const ::ssize_t written = ::write(m_descriptor, text.data() + done, text.size() - done);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            fail("cannot write " + printable(m_path));
        done += static_cast<std::size_t>(written);
    }
}

void StudyJournal::add(const CaseResult& result)
{
    m_hasRecords = true;
    write(recordOf(result));
}

void StudyJournal::remove() noexcept
{
    ::unlink(m_path.c_str());
}

} // namespace Tarn
