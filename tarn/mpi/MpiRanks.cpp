#include <tarn/mpi/MpiRanks.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/run/CrashReport.hpp>
#include <tarn/run/Interruption.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/run/Workers.hpp>
#include <tarn/study/CaseRecord.hpp>
#include <tarn/study/Study.hpp>

#include <loam/OutputFile.hpp>
#include <loam/StringUtil.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <limits>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include <mpi.h>
#include <unistd.h>

namespace Tarn {

namespace {

using Clock = std::chrono::steady_clock;
using Orla::VCancellation;

enum Tag : int {
    Ready,    ///< to rank 0: the status as text, and the messages if it is not 0
    Go,       ///< from rank 0: the status with which all ranks end, or that they begin
    Request,  ///< to rank 0: a number of cases is wanted
    Assign,   ///< from rank 0: the numbers of cases; none if no more are left
    Result,   ///< to rank 0: the records of cases
    Finished, ///< to rank 0: the rank has no more cases; with a text if it was cancelled
    Cancel,   ///< from rank 0: evaluations are cancelled
    Final     ///< from rank 0: the exit status
};

constexpr int Begin = -1; // instead of a status

// A rank asks for as many cases as it evaluates in this time, so that it need not wait for each.
constexpr double BatchSeconds = 0.02;
constexpr std::uint64_t LargestBatch = 16; // long cases that follow would keep one rank busy

// How long rank 0 waits for ranks that were cancelled.
constexpr std::chrono::milliseconds Patience{500};

// Waits, the longer the longer nothing has happened.
class Nap {
public:
    void take()
    {
        std::this_thread::sleep_for(m_length);
        m_length = std::min(m_length * 2, Longest);
    }
    void reset() noexcept { m_length = Shortest; }

private:
    static constexpr std::chrono::microseconds Shortest{20};
    static constexpr std::chrono::microseconds Longest{2000};

    std::chrono::microseconds m_length{Shortest};
};

struct Message {
    int source;
    int tag;
    std::string text;
};

void send(int rank, Tag tag, const std::string& text)
{
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::length_error{"the result of a case has more than 2 GB"};
    MPI_Send(text.data(), static_cast<int>(text.size()), MPI_CHAR, rank, tag, MPI_COMM_WORLD);
}

// Returns a message that has arrived, if there is one.
std::optional<Message> receive()
{
    int isThere = 0;
    MPI_Status status;
    MPI_Iprobe(MPI_ANY_SOURCE, MPI_ANY_TAG, MPI_COMM_WORLD, &isThere, &status);
    if (!isThere)
        return std::nullopt;
    int size = 0;
    MPI_Get_count(&status, MPI_CHAR, &size);
    Message message{status.MPI_SOURCE, status.MPI_TAG, std::string(static_cast<std::size_t>(size), '\0')};
    MPI_Recv(message.text.data(), size, MPI_CHAR, message.source, message.tag, MPI_COMM_WORLD, MPI_STATUS_IGNORE);
    return message;
}

Message await(Tag tag)
{
    Nap nap;
    while (true) {
        if (std::optional<Message> message = receive(); message && message->tag == tag)
            return *std::move(message);
        nap.take();
    }
}

std::string textOf(const std::vector<std::uint64_t>& numbers)
{
    std::string text;
    for (const std::uint64_t number : numbers)
        text += std::to_string(number) + ' ';
    return text;
}

std::vector<std::uint64_t> numbersOf(const std::string& text)
{
    std::vector<std::uint64_t> numbers;
    Loam::StringUtil::forEachPiece(text, ' ', [&](std::string_view piece) {
        if (!piece.empty())
            numbers.push_back(std::stoull(std::string(piece)));
    });
    return numbers;
}

std::vector<CaseResult> readResults(const Message& message)
{
    std::vector<CaseResult> results;
    Loam::StringUtil::forEachPiece(message.text, '\n', [&](std::string_view record) {
        if (record.empty())
            return;
        Loam::Result<CaseResult> result = resultOf(record);
        if (!result)
            throw std::runtime_error{"rank " + std::to_string(message.source)
                                     + " sent an invalid result: " + result.reason()};
        results.push_back(*std::move(result));
    });
    return results;
}

// The cases that rank 0 assigned to this rank. The threads that evaluate wait here for cases; the
// main thread fetches them and passes the results on.
class AssignedCases final : public CaseExchange {
public:
    std::vector<std::uint64_t> next(std::size_t most) override
    {
        std::unique_lock lock{m_mutex};
        ++m_waiting;
        m_changed.wait(lock, [this] { return !m_numbers.empty() || m_hasEnded; });
        --m_waiting;
        if (m_isCancelled)
            return {};
        const auto end = m_numbers.begin() + static_cast<std::ptrdiff_t>(std::min(most, m_numbers.size()));
        std::vector<std::uint64_t> numbers(m_numbers.begin(), end);
        m_numbers.erase(m_numbers.begin(), end);
        return numbers;
    }

    void deliver(std::vector<CaseResult> results) override
    {
        std::string records;
        for (const CaseResult& result : results)
            records += recordOf(result);
        const std::lock_guard lock{m_mutex};
        m_evaluated += results.size();
        if (!records.empty())
            m_records.push_back(std::move(records));
    }

    void end() override
    {
        const std::lock_guard lock{m_mutex};
        m_hasEnded = m_isCancelled = true;
        m_changed.notify_all();
    }

    void assign(const std::vector<std::uint64_t>& numbers)
    {
        const std::lock_guard lock{m_mutex};
        m_isRequested = false;
        m_hasEnded = m_hasEnded || numbers.empty();
        m_numbers.insert(m_numbers.end(), numbers.begin(), numbers.end());
        m_changed.notify_all();
    }

    std::optional<std::string> takeRecord()
    {
        const std::lock_guard lock{m_mutex};
        if (m_records.empty())
            return std::nullopt;
        std::string record = std::move(m_records.front());
        m_records.pop_front();
        return record;
    }

    // Returns how many cases to request now; 0 if there are enough.
    std::uint64_t takeRequest()
    {
        const std::lock_guard lock{m_mutex};
        if (m_isRequested || m_hasEnded)
            return 0;
        const double seconds = std::chrono::duration<double>(Clock::now() - m_begin).count();
        const double rate = seconds > 0 ? static_cast<double>(m_evaluated) / seconds : 0;
        const auto batch = std::min(static_cast<std::uint64_t>(rate * BatchSeconds), LargestBatch);
        // Long cases are requested when a thread waits for one: another rank may be free earlier.
        const std::uint64_t wanted = m_waiting + batch;
        if (m_numbers.size() >= wanted)
            return 0;
        m_isRequested = true;
        return wanted - m_numbers.size();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::uint64_t> m_numbers;
    std::deque<std::string> m_records; // each of one or more cases
    std::uint64_t m_waiting = 0;       // threads
    std::uint64_t m_evaluated = 0;
    Clock::time_point m_begin = Clock::now();
    bool m_isRequested = false;
    bool m_hasEnded = false;
    bool m_isCancelled = false;
};

} // namespace

MpiRanks::MpiRanks(int& argc, char**& argv)
{
    int provided = 0;
    MPI_Init_thread(&argc, &argv, MPI_THREAD_FUNNELED, &provided);
    if (provided < MPI_THREAD_FUNNELED) {
        say("this MPI library does not support threads");
        abort(ObjectFailed);
    }
    MPI_Comm_rank(MPI_COMM_WORLD, &m_rank);
    MPI_Comm_size(MPI_COMM_WORLD, &m_size);
    if (!isFirst())
        setMessageSink([this](const std::string& line) { m_messages += line + '\n'; });
}

MpiRanks::~MpiRanks()
{
    MPI_Finalize();
}

std::optional<int> MpiRanks::agree()
{
    const std::optional<int> status = agree(Begin);
    if (!isFirst())
        setMessageSink(
            [rank = m_rank](const std::string& line) { writeLine("rank " + std::to_string(rank) + ": " + line); });
    return status;
}

// `status` is `Begin` if this rank is ready.
std::optional<int> MpiRanks::agree(int status)
{
    m_hasAgreed = true;
    if (!isFirst()) {
        send(0, Ready, std::to_string(status) + ' ' + m_messages);
        status = std::stoi(await(Go).text);
        m_hasBegun = status == Begin;
        return status == Begin ? std::nullopt : std::optional(status);
    }
    std::vector<std::pair<int, std::string>> others(static_cast<std::size_t>(m_size), {Begin, {}});
    for (int i = 1; i < m_size; ++i) {
        const Message ready = await(Ready);
        std::size_t end = 0;
        const int other = std::stoi(ready.text, &end);
        others[static_cast<std::size_t>(ready.source)] = {other, ready.text.substr(end + 1)};
    }
    const auto failed = std::ranges::find_if(others, [](const auto& other) { return other.first > Fine; });
    if (status == Begin && failed != others.end()) {
        status = failed->first;
        const std::string rank = "rank " + std::to_string(failed - others.begin()) + ": ";
        Loam::StringUtil::forEachPiece(failed->second, '\n', [&rank](std::string_view line) {
            if (!line.empty())
                printLine(rank + std::string(line));
        });
    }
    for (int i = 1; i < m_size; ++i)
        send(i, Go, std::to_string(status));
    m_hasBegun = status == Begin;
    m_areOthersWorking = m_hasBegun && m_size > 1;
    return status == Begin ? std::nullopt : std::optional(status);
}

void MpiRanks::serve(const std::function<void()>& evaluate, CaseExchange& cases, bool isShared,
                     VCancellation cancellation)
{
    std::atomic<bool> isEvaluating{true};
    Workers local{1,
                  [&] {
                      evaluate();
                      isEvaluating = false;
                  },
                  [&] {
                      isEvaluating = false;
                      cancellation.cancel();
                  }};
    int working = m_size - 1;
    try {
        std::optional<Clock::time_point> cancelled;
        Nap nap;
        while (isEvaluating || working > 0) {
            if (cancellation.isCancelled() && !cancelled) {
                cancelled = Clock::now();
                for (int i = 1; i < m_size; ++i)
                    send(i, Cancel, {});
            }
            // The launcher has sent the signal to all ranks.
            if (Interruption::signal() != 0 && !isEvaluating)
                break;
            if (cancelled && Clock::now() - *cancelled > Patience)
                break;
            const std::optional<Message> message = receive();
            if (!message) {
                nap.take();
                continue;
            }
            nap.reset();
            if (message->tag == Request) {
                const std::size_t wanted = isShared ? std::stoul(message->text) : 0;
                send(message->source, Assign, textOf(wanted > 0 ? cases.next(wanted) : std::vector<std::uint64_t>{}));
            } else if (message->tag == Result) {
                cases.deliver(readResults(*message));
            } else if (message->tag == Finished) {
                --working;
                if (message->text.empty())
                    continue;
                cancellation.cancel();
                if (const int signal = std::stoi(message->text); signal != 0 && Interruption::signal() == 0)
                    std::raise(signal);
            }
        }
    } catch (...) {
        cancellation.cancel();
        cases.end();
        throw;
    }
    m_areOthersWorking = working > 0;
    local.join();
}

int MpiRanks::work(const std::function<void(CaseExchange&)>& evaluate, VCancellation cancellation)
{
    AssignedCases cases;
    std::atomic<bool> isEvaluating{true};
    Workers local{1,
                  [&] {
                      evaluate(cases);
                      isEvaluating = false;
                  },
                  [&] { isEvaluating = false; }};
    const auto passOn = [&cases] {
        bool hasPassed = false;
        while (const std::optional<std::string> record = cases.takeRecord()) {
            send(0, Result, *record);
            hasPassed = true;
        }
        return hasPassed;
    };
    Nap nap;
    while (isEvaluating) {
        bool isIdle = !passOn();
        if (const std::uint64_t wanted = cases.takeRequest(); wanted > 0) {
            send(0, Request, std::to_string(wanted));
            isIdle = false;
        }
        if (const std::optional<Message> message = receive()) {
            isIdle = false;
            if (message->tag == Assign)
                cases.assign(numbersOf(message->text));
            else if (message->tag == Cancel)
                cancellation.cancel();
        }
        if (cancellation.isCancelled())
            cases.end();
        if (isIdle)
            nap.take();
        else
            nap.reset();
    }
    local.join();
    passOn();
    if (const int signal = Interruption::signal())
        leave(128 + signal);
    // The number of the signal, or 0 if an object has cancelled the evaluation.
    send(0, Finished, cancellation.isCancelled() ? std::to_string(Interruption::signal()) : std::string());
    const int status = std::stoi(await(Final).text);
    m_isDone = true;
    return status;
}

int MpiRanks::finish(int status)
{
    if (!m_hasAgreed) {
        // Rank 0 has performed the command alone, or this rank could not prepare.
        const std::optional<int> agreed = agree(isFirst() || status != Fine ? status : Begin);
        return agreed.value_or(status);
    }
    if (!m_hasBegun)
        return status;
    if (Interruption::signal() != 0)
        leave(status);
    if (m_areOthersWorking || (!isFirst() && !m_isDone))
        abort(status);
    for (int i = 1; isFirst() && i < m_size; ++i)
        send(i, Final, std::to_string(status));
    return status;
}

// The launcher of an interrupted job ends it already; MPI would wait for the other ranks.
void MpiRanks::leave(int status) const
{
    // The launcher kills all ranks when the first one ends, so rank 0 reports before.
    if (!isFirst())
        std::this_thread::sleep_for(2 * Patience);
    CrashReport::ignoreExit();
    Loam::OutputFile::removeUnfinished();
    std::fflush(nullptr);
    ::_exit(status);
}

void MpiRanks::abort(int status)
{
    CrashReport::ignoreExit();
    Loam::OutputFile::removeUnfinished();
    MPI_Abort(MPI_COMM_WORLD, status);
    std::abort();
}

} // namespace Tarn
