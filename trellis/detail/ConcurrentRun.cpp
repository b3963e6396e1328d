#include <trellis/detail/ConcurrentRun.hpp>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <optional>
#include <unordered_set>
#include <utility>

namespace Orla::Detail {

namespace {

// Limits for the number of frames examined to find out whether one depends on another.
constexpr std::size_t LeastEffort = 256;
constexpr std::size_t MostEffort = 1u << 20;

// A pool keeps the memory of at most this many jobs from one run to the next.
constexpr std::size_t MostSpareJobs = 4096;

} // namespace

/// One update that may run in another thread, and its announcements.
class ConcurrentRun::Job {
public:
    // A change that was announced without writing a cell.
    struct Announcement {
        StrongPtr<VParameter> parameter;
        std::string member;
    };

    struct Event {
        VFrame* frame = nullptr; // the frame that wrote a cell, or was scheduled
        std::unique_ptr<Announcement> announcement;
        double precision = 0;
        std::uint32_t cell = 0;
        bool isSchedule = false;
    };

    enum class State { Waiting, Running, Done };

    std::optional<Update> update;
    std::vector<Event> events;
    Update::Result result = Update::Result::Skipped; // this and the state are guarded by
    State state = State::Waiting;                    // the team's lock
    std::chrono::nanoseconds duration{};             // of the update
    bool isReady = false;                            // false if the object does not run
    bool needsCount = true;                          // its run has not been counted yet
};

/// Jobs whose memory is reused, also by the next run in the pool.
class ConcurrentRun::SpareJobs final : public RunMemory {
public:
    std::vector<std::unique_ptr<Job>> jobs;
};

/// The threads that work on a run: the calling thread and those of the executor. Tasks of the
/// executor share ownership, because they may start after the run has ended.
class ConcurrentRun::Team {
public:
    Team(ConcurrentRun& theRun, PoolState& thePool, NetworkCore& theNetwork, VRequest& theRequest)
        : run{theRun}
        , pool{thePool}
        , request{theRequest}
        , network{&theNetwork}
        , cancellation{theRequest.cancellation()}
        , concurrency{theRun.m_executor.concurrency()}
    {
    }

    /// Runs jobs until none is left to start.
    void work(std::unique_lock<std::mutex>& lock, const StrongPtr<ValuePool>& view, VRequest& ownRequest)
    {
        std::vector<std::pair<Job*, Update::Result>> mine;
        while (!jobs.empty()) {
            // A few at a time, so many short ones rarely need the lock.
            const std::size_t share = std::max<std::size_t>(1, jobs.size() / 8);
            const auto end = jobs.begin() + static_cast<std::ptrdiff_t>(share);
            mine.clear();
            for (auto job = jobs.begin(); job != end; ++job)
                mine.emplace_back(*job, Update::Result::Skipped);
            jobs.erase(jobs.begin(), end);
            lock.unlock();
            Clock::time_point started = Clock::now();
            for (auto& [job, result] : mine) {
                result = runJob(*job, *view, ownRequest);
                const Clock::time_point ended = Clock::now();
                job->duration = ended - std::exchange(started, ended);
            }
            lock.lock();
            for (const auto& [job, result] : mine) {
                job->result = result;
                job->state = Job::State::Done;
            }
            running -= mine.size();
            progressed.notify_all();
        }
    }

    Update::Result runJob(Job& job, ValuePool& view, VRequest& ownRequest)
    {
        if (!job.isReady)
            return Update::Result::Skipped;
        if (cancellation.isCancelled())
            return Update::Result::Cancelled;
        network->gate.giveWay();
        Job* const outer = std::exchange(t_job, &job);
        const Update::Result result = job.update->call(view, ownRequest);
        t_job = outer;
        return result;
    }

    /// The body of an executor's task.
    void help() noexcept
    {
        std::unique_lock lock{mutex};
        ++helpers;
        try {
            helpUntilClosed(lock);
        } catch (const std::bad_alloc&) {
            // The other threads continue without this one.
        }
        if (!lock.owns_lock())
            lock.lock();
        --helpers;
        progressed.notify_all();
    }

    void helpUntilClosed(std::unique_lock<std::mutex>& lock)
    {
        std::chrono::microseconds patience{50};
        while (!isClosed) {
            if (jobs.empty()) {
                const bool isIdle = hasJobs.wait_for(lock, patience) == std::cv_status::timeout;
                if (isClosed || !jobs.empty() || !isIdle || running == 0)
                    continue;
                // The other jobs take long: start objects that do not depend on them.
                lock.unlock();
                {
                    const UseScope use{*network};
                    if (const std::unique_lock plan{planning, std::try_to_lock})
                        run.startEarly(MostEffort);
                }
                lock.lock();
                patience = std::min(2 * patience, std::chrono::microseconds{5000});
                continue;
            }
            patience = std::chrono::microseconds{50};
            lock.unlock();
            {
                const UseScope use{*network};
                const CurrentScope current{*network};
                const Loam::Ageable::Ticks ticks;
                StrongPtr<ValuePool> view;
                {
                    const std::lock_guard tables{tablesMutex};
                    lock.lock();
                    if (!isClosed && !jobs.empty())
                        view = pool.makeView();
                    lock.unlock();
                }
                if (view) {
                    VRequest own(
                        view, [this](double fraction) { report(fraction); }, cancellation);
                    lock.lock();
                    work(lock, view, own);
                    lock.unlock();
                    const std::lock_guard tables{tablesMutex};
                    view.reset();
                    own = VRequest(nullptr);
                }
            }
            lock.lock();
        }
    }

    void report(double fraction)
    {
        const std::lock_guard lock{reportMutex};
        request.reportProgress(fraction);
    }

    ConcurrentRun& run; // this and the next two are valid only during the run
    PoolState& pool;
    VRequest& request;
    const StrongPtr<NetworkCore> network;
    const VCancellation cancellation;
    const unsigned concurrency;

    std::mutex planning;              // held by the thread that decides what to run next
    std::recursive_mutex tablesMutex; // guards the pool's tables
    std::mutex reportMutex;
    std::mutex mutex; // guards the rest
    std::condition_variable hasJobs;
    std::condition_variable progressed;
    std::deque<Job*> jobs;   // to be started
    std::size_t running = 0; // number of jobs that are queued or running
    unsigned helpers = 0;    // number of running tasks
    bool isClosed = false;

    static thread_local Job* t_job; // the job that this thread runs
};

thread_local ConcurrentRun::Job* ConcurrentRun::Team::t_job = nullptr;

ConcurrentRun::ConcurrentRun(PoolState& pool, VRequest& request, VExecutor& executor)
    : SerialRun{pool, request}
    , m_executor{executor}
    , m_handOverTime{executor.handOverTime()}
    , m_team{std::make_shared<Team>(*this, pool, m_network, request)}
    , m_plan{m_team->planning}
{
    if (!m_pool.runMemory)
        m_pool.runMemory = std::make_unique<SpareJobs>();
    m_spare = static_cast<SpareJobs*>(m_pool.runMemory.get());
    m_pool.recorder = this;
}

ConcurrentRun::~ConcurrentRun()
{
    {
        const Gate::Pause pause;
        std::unique_lock lock{m_team->mutex};
        m_team->isClosed = true;
        m_team->jobs.clear();
        m_team->hasJobs.notify_all();
        m_team->progressed.wait(lock, [this] { return m_team->helpers == 0; });
    }
    m_pool.recorder = nullptr;
    // Jobs that were not committed stay due.
    for (const std::unique_ptr<Job>& job : m_batch) {
        if (job)
            giveBack(*job);
    }
    for (const auto& [frame, job] : m_early)
        giveBack(*job);
}

void ConcurrentRun::giveBack(Job& job) noexcept
{
    PoolState::setReturned(job.update->frame(), false);
    m_pool.giveBack(job.update->frame(), job.update->precision());
}

std::recursive_mutex& ConcurrentRun::mutex() noexcept
{
    return m_team->tablesMutex;
}

bool ConcurrentRun::recordChange(VFrame& writer, std::uint32_t cell)
{
    Job* const job = Team::t_job;
    if (!job)
        return false;
    Job::Event event;
    event.frame = &writer;
    event.cell = cell;
    job->events.push_back(std::move(event));
    return true;
}

bool ConcurrentRun::recordChange(const VParameter& parameter, const std::string& member)
{
    Job* const job = Team::t_job;
    if (!job)
        return false;
    // Usually the object wrote one of its own outputs.
    VFrame& frame = job->update->frame();
    const VSlot* const slot = parameter.slot();
    if (member.empty() && slot && slot->container() == frame.container() && !slot->isConnected()
        && slot->member().empty() && frame.hasCell(slot->place().cell))
        return recordChange(frame, slot->place().cell);
    Job::Event event;
    event.announcement.reset(
        new Job::Announcement{WeakPtrImpl<VParameter>(const_cast<VParameter*>(&parameter)).lock(), member});
    job->events.push_back(std::move(event));
    return true;
}

bool ConcurrentRun::recordSchedule(VFrame& frame, double precision)
{
    Job* const job = Team::t_job;
    if (!job)
        return false;
    Job::Event event;
    event.frame = &frame;
    event.precision = precision;
    event.isSchedule = true;
    job->events.push_back(std::move(event));
    return true;
}

VScheduler::Summary ConcurrentRun::run()
{
    if (m_pool.hasPending)
        m_pool.announcePending();
    while (isThereMore()) {
        VFrame* const frame = next();
        if (!frame)
            continue;
        const bool hasStarted = !m_early.empty() && m_early.contains(frame);
        const bool isAlone = m_early.empty() && !m_pool.peekDue();
        const bool isNext = isAlone || (PoolState::runsInTurn(*frame) && !hasStarted);
        if (!isNext && PoolState::isShort(*frame) && !hasStarted) {
            if (!runShort(*frame))
                break;
            continue;
        }
        m_lastEnd.reset();
        if (isNext) {
            if (!runOne(*frame))
                break;
            continue;
        }
        takeBatch(*frame);
        if (!runBatch())
            break;
        if (m_executorError)
            std::rethrow_exception(m_executorError);
    }
    m_summary.waiting = m_pool.waitingCount;
    return m_summary;
}

// Runs an object as a serial run does. Its next update may be handed to a thread again.
bool ConcurrentRun::runShort(VFrame& frame)
{
    if (!m_lastEnd)
        m_lastEnd = Clock::now();
    return runOne(frame, [this](VFrame& ended) {
        const Clock::time_point end = Clock::now();
        noteDuration(ended, end - *std::exchange(m_lastEnd, end));
    });
}

void ConcurrentRun::noteDuration(VFrame& frame, std::chrono::nanoseconds duration) noexcept
{
    PoolState::noteLength(frame, duration < m_handOverTime);
}

// Moves all due frames of one order number from the queue to the batch.
void ConcurrentRun::takeBatch(VFrame& first)
{
    const std::uint32_t order = PoolState::orderOf(first);
    const auto take = [this](VFrame& frame) {
        try {
            m_batch.emplace_back(); // before the job, which must not be lost
            m_batch.back() = makeJob(frame);
        } catch (...) {
            m_pool.makeDue(frame);
            throw;
        }
    };
    take(first);
    while (VFrame* const frame = m_pool.peekDue()) {
        if (PoolState::orderOf(*frame) != order || PoolState::runsInTurn(*frame))
            break;
        take(*m_pool.nextDue());
    }
}

std::unique_ptr<ConcurrentRun::Job> ConcurrentRun::makeJob(VFrame& frame)
{
    if (const auto early = m_early.find(&frame); early != m_early.end()) {
        std::unique_ptr<Job> job = std::move(early->second);
        m_early.erase(early);
        return job;
    }
    std::unique_ptr<Job> job;
    if (m_spare->jobs.empty()) {
        job = std::make_unique<Job>();
    } else {
        job = std::move(m_spare->jobs.back());
        m_spare->jobs.pop_back();
    }
    job->update.emplace(frame);
    try {
        job->isReady = job->update->prepare();
        if (job->isReady)
            m_pool.prepareToAnnounce(frame);
    } catch (...) {
        giveBack(*job);
        throw;
    }
    return job;
}

// Keeps the memory of a job for reuse.
void ConcurrentRun::recycle(std::unique_ptr<Job> job)
{
    job->update.reset();
    job->events.clear();
    job->result = Update::Result::Skipped;
    job->state = Job::State::Waiting;
    job->needsCount = true;
    if (m_spare->jobs.size() < MostSpareJobs)
        m_spare->jobs.push_back(std::move(job));
}

// Asks the executor for as many threads as the jobs can use.
void ConcurrentRun::hire(std::size_t jobs)
{
    if (m_executorError)
        return;
    const std::size_t wanted = std::min<std::size_t>(m_executor.concurrency(), jobs > 0 ? jobs - 1 : 0);
    try {
        for (; m_hired < wanted; ++m_hired)
            m_executor.execute([team = m_team] { team->help(); });
    } catch (...) {
        m_executorError = std::current_exception();
    }
}

bool ConcurrentRun::runBatch()
{
    Team& team = *m_team;
    std::size_t fresh = 0;
    {
        const std::lock_guard lock{team.mutex};
        for (const std::unique_ptr<Job>& job : m_batch) {
            if (job->state != Job::State::Waiting)
                continue; // it started early
            if (std::exchange(job->needsCount, false) && job->isReady && !countRun(job->update->frame()))
                job->isReady = false;
            start(*job);
            ++fresh;
        }
    }
    // Later objects may start immediately if they do not depend on these.
    std::size_t effort = LeastEffort;
    if (fresh <= m_executor.concurrency())
        startEarly(effort);
    {
        const std::lock_guard lock{team.mutex};
        fresh = team.running;
    }
    hire(fresh);
    team.hasJobs.notify_all();

    const StrongPtr<ValuePool>& pool = m_request.valuePool();
    const auto isDone = [this] {
        return std::ranges::all_of(m_batch, [](const auto& job) { return job->state == Job::State::Done; });
    };
    std::unique_lock lock{team.mutex};
    while (true) {
        m_plan.unlock(); // while this thread is busy, another one may plan
        team.work(lock, pool, m_request);
        if (!isDone()) {
            lock.unlock();
            {
                const Gate::Pause pause;
                lock.lock();
                team.progressed.wait_for(lock, std::chrono::microseconds(200), isDone);
                lock.unlock();
            }
            lock.lock();
        }
        const bool isOver = isDone();
        lock.unlock();
        m_plan.lock();
        lock.lock();
        if (isOver)
            break;
        if (!team.jobs.empty())
            continue;
        lock.unlock();
        // The other jobs take long: do more in this thread than wait.
        effort = std::min(2 * effort, MostEffort);
        startEarly(effort);
        lock.lock();
    }
    lock.unlock();

    m_spare->jobs.reserve(m_spare->jobs.size() + m_batch.size());
    for (const std::unique_ptr<Job>& job : m_batch)
        PoolState::setReturned(job->update->frame(), true);
    for (std::unique_ptr<Job>& job : m_batch) {
        if (!commit(*job))
            return false;
        recycle(std::move(job));
    }
    m_batch.clear();
    return true;
}

// Queues a job for the threads. The caller holds the team's lock.
void ConcurrentRun::start(Job& job)
{
    m_team->jobs.push_back(&job);
    ++m_team->running;
    job.state = Job::State::Running;
}

// Starts objects that do not depend on a running object or on one that must run first. The
// changes of a finished update count as announced, although they are announced later. A
// listener may write to any object before that, so nothing starts early while values have
// listeners.
void ConcurrentRun::startEarly(std::size_t effort)
{
    if (m_pool.hasListeners)
        return;
    std::vector<VFrame*> blocking;
    std::vector<VFrame*> candidates;
    std::unordered_set<const VFrame*> taken;
    const auto classify = [&](const Job& job) {
        VFrame& frame = job.update->frame();
        taken.insert(&frame);
        bool blocks = job.state != Job::State::Done || job.result != Update::Result::Succeeded;
        for (std::size_t i = 0; !blocks && i < job.events.size(); ++i) {
            const Job::Event& event = job.events[i];
            blocks = event.announcement || event.isSchedule;
        }
        if (blocks) {
            blocking.push_back(&frame);
            return;
        }
        for (const Job::Event& event : job.events)
            PoolState::forEachKnownReader(*event.frame, event.cell,
                                          [&](VFrame& reader) { candidates.push_back(&reader); });
    };
    {
        const std::lock_guard lock{m_team->mutex};
        for (const std::unique_ptr<Job>& job : m_batch) {
            if (job)
                classify(*job);
        }
        for (const auto& [frame, job] : m_early)
            classify(*job);
    }
    bool hasSeenAll = true;
    m_pool.forEachDue([&](VFrame& frame) {
        candidates.push_back(&frame);
        return hasSeenAll = candidates.size() < effort;
    });
    if (!hasSeenAll)
        return; // it would take too long to find out
    std::erase_if(candidates, [&](VFrame* frame) {
        if (taken.contains(frame))
            return true;
        if (!PoolState::runsInTurn(*frame) && PoolState::mayStartEarly(*frame))
            return false;
        blocking.push_back(frame);
        return true;
    });
    if (candidates.empty())
        return;
    std::ranges::stable_sort(candidates, {}, [](const VFrame* frame) { return PoolState::orderOf(*frame); });
    std::erase_if(candidates, [&](const VFrame* frame) { return !taken.insert(frame).second; });
    const std::uint32_t lastOrder = PoolState::orderOf(*candidates.back());

    // Everything that depends on a blocking frame, up to the order of the last candidate.
    std::unordered_set<const VFrame*> blocked;
    std::vector<VFrame*> path;
    const auto block = [&](VFrame& start) {
        const std::lock_guard tables{m_team->tablesMutex};
        path.assign(1, &start);
        while (!path.empty()) {
            const VFrame& frame = *path.back();
            path.pop_back();
            const std::size_t before = path.size();
            m_pool.collectReaders(frame, path);
            const auto isKnown = [&](const VFrame* reader) {
                return PoolState::orderOf(*reader) > lastOrder || !blocked.insert(reader).second;
            };
            path.erase(std::remove_if(path.begin() + static_cast<std::ptrdiff_t>(before), path.end(), isKnown),
                       path.end());
            if (blocked.size() > effort)
                return false;
        }
        return true;
    };
    for (VFrame* frame : blocking) {
        if (!block(*frame))
            return;
    }
    std::size_t started = 0;
    for (VFrame* frame : candidates) {
        if (!blocked.contains(frame)) {
            auto job = makeJob(*frame);
            const bool counts = job->isReady && m_pool.countRun(*frame);
            if (!counts) {
                // It is examined again when its turn comes.
                if (job->isReady)
                    giveBack(*job);
            } else {
                job->needsCount = false;
                Job& early = keepEarly(*frame, std::move(job));
                const std::lock_guard lock{m_team->mutex};
                start(early);
                ++started;
            }
        }
        if (started > m_team->concurrency || !block(*frame))
            break;
    }
    if (started > 0)
        m_team->hasJobs.notify_all();
}

ConcurrentRun::Job& ConcurrentRun::keepEarly(VFrame& frame, std::unique_ptr<Job> job)
{
    try {
        return *(m_early[&frame] = std::move(job));
    } catch (...) {
        giveBack(*job);
        throw;
    }
}

bool ConcurrentRun::commit(Job& job)
{
    VFrame& frame = job.update->frame();
    PoolState::setReturned(frame, false);
    if (!job.isReady || job.result == Update::Result::Skipped)
        return true;
    if (m_pool.observer)
        m_pool.observer->began(job.update->object());
    // A listener that was notified of an earlier job may have written an input of this one.
    // The object then runs again, as if it had run before that job.
    const bool isOutdated = PoolState::mustRunAgain(frame);
    if (!isOutdated)
        job.update->knowValuesOfNow();
    noteDuration(frame, job.duration);
    announce(job);
    const bool goesOn = finish(*job.update, job.result);
    if (isOutdated && !PoolState::isDead(frame))
        m_pool.makeDue(frame);
    return goesOn;
}

void ConcurrentRun::announce(Job& job)
{
    for (const Job::Event& event : job.events) {
        if (event.isSchedule) {
            m_pool.schedule(*event.frame, event.precision);
        } else if (event.announcement) {
            m_pool.announce(*event.announcement->parameter, event.announcement->member);
        } else {
            // The ages of values follow the order of the announcements.
            if (VValueBase* const value = event.frame->cell(event.cell).value)
                value->age().touch();
            event.frame->announce(event.cell);
        }
    }
    job.events.clear();
}

} // namespace Orla::Detail
