#pragma once

#include <trellis/detail/DueQueue.hpp>
#include <trellis/detail/IdTable.hpp>
#include <trellis/detail/NetworkCore.hpp>
#include <trellis/detail/SpinLock.hpp>

#include <trellis/VHistory.hpp>
#include <trellis/VManagedObjectBase.hpp>
#include <trellis/VObserver.hpp>
#include <trellis/ValuePool.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orla {

class VParameter;
class VSlot;
class VSlotContainer;

namespace Detail {

/// Records what updates announce while objects of one pool run concurrently. The functions
/// return false if the calling thread is not running a concurrent update; the pool then
/// announces immediately.
class Recorder {
public:
    virtual ~Recorder();
    virtual bool recordChange(VFrame& writer, std::uint32_t cell) = 0;
    virtual bool recordChange(const VParameter& parameter, const std::string& member) = 0;
    virtual bool recordSchedule(VFrame& frame, double precision) = 0;

    /// Guards the pool's tables against concurrent updates.
    virtual std::recursive_mutex& mutex() noexcept = 0;
};

/// Memory that one evaluation of a pool leaves for the next.
class RunMemory {
public:
    virtual ~RunMemory();
};

/// The state of a pool in use: frames, variables and due objects.
class PoolState {
public:
    explicit PoolState(ValuePool& pool) noexcept : m_pool{&pool} {}
    PoolState(const PoolState&) = delete;
    PoolState& operator=(const PoolState&) = delete;
    ~PoolState();

    ValuePool& pool() const noexcept { return *m_pool; }

    // Frames

    VFrame* findFrame(const VSlotContainer& container) noexcept;

    /// Returns the frame of \p container, creating it if it is missing. Returns null if the
    /// container and the pool belong to different networks. The first container binds the pool
    /// to its network.
    VFrame* frame(VSlotContainer& container);

    /// Returns the network that the pool is bound to, or null.
    NetworkCore* network() const noexcept;

    /// Gives each slot of the frame's container a cell and each cell a value.
    void complete(VFrame& frame);

    /// Calls \p function for each frame.
    template<class Function>
    void forEachFrame(Function&& function)
    {
        for (VFrame* frame : m_frames) {
            if (frame)
                function(*frame);
        }
    }

    // Variables

    /// Returns the variable of \p parameter, or null. Creates nothing.
    VValueBase* find(const VParameter& parameter) noexcept;

    /// Returns the variable of \p parameter, creating it if it is missing. Returns null for a
    /// parameter of another network.
    StrongPtr<VValueBase> make(const VParameter& parameter);

    /// Returns the value that \p slot refers to, or null.
    StrongPtr<VValueBase> find(const VSlot& slot);
    StrongPtr<VValueBase> make(const VSlot& slot);

    void enter(const VParameter& parameter, const StrongPtr<VValueBase>& value);
    StrongPtr<VValueBase> findName(const std::string& name) const;
    std::size_t variableCount() noexcept;

    /// Releases the variables of a parameter that is about to be destroyed.
    static void forgetEverywhere(const VParameter& parameter) noexcept;

    /// Makes \p frame due as `VScheduler::schedule` does. The caller holds a use of the
    /// network.
    void schedule(VFrame& frame, double precision);

    /// Makes the objects that read \p parameter due and notifies listeners.
    void announce(const VParameter& parameter, const std::string& member);

    /// Makes the readers of \p parameter due in every pool that has a variable.
    static void announcePrototype(const VParameter& parameter);

    /// Returns the pools in which a frame holds the parameter's variable.
    static std::vector<StrongPtr<ValuePool>> poolsWithCell(const VParameter& parameter);

    // Due frames

    void makeDue(VFrame& frame) noexcept
    {
        if (frame.m_isDue || !frame.m_isEvaluated)
            return;
        frame.m_isDue = true;
        ++dueCount;
        enqueue(frame);
    }

    /// As above, and notifies the pool's observer.
    void makeDue(VFrame& frame, VObserver::Cause cause, const VParameter* changed = nullptr) noexcept;

    void enqueue(VFrame& frame) noexcept
    {
        if (frame.m_isInLoop) [[unlikely]]
            enqueueInLoop(frame);
        else
            due.push(frame);
    }

    /// Removes the next due frame from the queue and returns it; null if nothing is due.
    VFrame* nextDue() noexcept
    {
        sortIfOutOfOrder();
        while (!due.empty()) {
            VFrame& next = due.pop();
            if (!next.m_isDead) [[likely]] {
                next.m_isDue = false;
                --dueCount;
                return &next;
            }
            discard(next);
        }
        return nullptr;
    }

    /// Returns the next due frame, which stays in the queue; null if nothing is due.
    VFrame* peekDue() noexcept;

    // Concurrent updates

    /// Prepares to announce whatever the object writes, so its update does not need the pool's
    /// tables to announce it.
    void prepareToAnnounce(VFrame& frame);

    static std::uint32_t orderOf(const VFrame& frame) noexcept { return frame.m_order; }
    /// Returns false for an object that is not evaluated, waits for a failed object, or is
    /// being updated.
    static bool mayStartEarly(const VFrame& frame) noexcept
    {
        return frame.m_isEvaluated && !frame.m_isWaiting && !frame.m_isUpdating;
    }

    /// Returns true for an object that does not run concurrently with others.
    static bool runsInTurn(const VFrame& frame) noexcept { return frame.m_runsInTurn; }
    /// Returns true for an object whose updates take less time than handing them to a thread.
    /// A single long update does not count: the thread may have been interrupted.
    static bool isShort(const VFrame& frame) noexcept { return frame.m_isShort; }
    static void noteLength(VFrame& frame, bool isShort) noexcept
    {
        frame.m_isShort = isShort || (frame.m_isShort && !frame.m_wasLong);
        frame.m_wasLong = !isShort;
    }
    /// Returns true if the object became due or was scheduled after it left the queue.
    static bool mustRunAgain(const VFrame& frame) noexcept { return frame.m_isDue || frame.m_hasPrecision; }
    static void setReturned(VFrame& frame, bool hasReturned) noexcept { frame.m_hasReturned = hasReturned; }
    static bool isDead(const VFrame& frame) noexcept { return frame.m_isDead; }

    /// Calls \p function with the frames that an announcement of the cell makes due.
    template<class Function>
    static void forEachKnownReader(VFrame& frame, std::uint32_t cell, Function&& function);

    /// Appends the frames that currently read a value of \p frame.
    void collectReaders(const VFrame& frame, std::vector<VFrame*>& readers);

    /// Creates a view of the pool for one thread's updates.
    StrongPtr<ValuePool> makeView();

    /// Queues the frames that wait for the next round of a loop. Returns false if no frame
    /// waits.
    bool startRound() noexcept;

    /// Called after the network's order has changed: due frames are sorted again before the
    /// next one runs.
    void orderChanged() noexcept { m_isOutOfOrder = true; }

    void setPrecision(VFrame& frame, double precision);
    double precision(const VFrame& frame) noexcept;
    double takePrecision(VFrame& frame) noexcept;

    /// Makes an object due again that left the queue with \p precision but did not run.
    void giveBack(VFrame& frame, double precision) noexcept;

    /// The number of runs of an object per pass after which its loop counts as not settling.
    static constexpr unsigned MaximalRuns = 100;
    static constexpr std::uint32_t LastPass = 0x3FFFFF; // then pass numbers start over

    /// Calls \p function with the frames in the queue, roughly in order, until it returns
    /// false.
    template<class Function>
    void forEachDue(Function&& function)
    {
        due.forEach([&](VFrame& frame) { return frame.m_isDead || function(frame); });
    }

    static bool isDue(const VFrame& frame) noexcept { return frame.m_isDue; }

    static VObject* objectOf(const VFrame& frame) noexcept { return frame.m_object; }

    template<class State>
    static State stateOf(const VFrame& frame) noexcept
    {
        return frame.m_isWaiting      ? State::Waiting
               : frame.m_isDue        ? State::Due
               : frame.m_hasFailed    ? State::Failed
               : frame.m_lastRun != 0 ? State::UpToDate
                                      : State::NotRun;
    }

    /// Starts a new pass, in which the runs of each object are counted from zero.
    void beginPass() noexcept
    {
        if ((++pass & LastPass) == 0) {
            pass = 1;
            forEachFrame([](VFrame& frame) { frame.m_pass = 0; });
        }
    }

    /// Counts a run of the object in this pass. Returns false if it has run too often.
    bool countRun(VFrame& frame) noexcept
    {
        if (frame.m_pass != pass) {
            frame.m_pass = pass & LastPass;
            frame.m_runs = 0;
        }
        if (frame.m_runs >= MaximalRuns) [[unlikely]]
            return false;
        ++frame.m_runs;
        return true;
    }

    /// Makes the members of a loop fail because it did not settle, and prevents them from
    /// running again in this pass.
    void stop(const std::vector<VFrame*>& loop, const std::string& reason);

    bool isStopped(const VFrame& frame) const noexcept { return frame.m_isStopped && frame.m_runs > MaximalRuns; }

    /// Records which member of a loop is running, if any.
    void enterLoop(const VFrame& frame) noexcept { loopPosition = frame.m_isInLoop ? std::int64_t{frame.m_order} : -1; }

    /// Returns true if the frame must wait until the preceding loop has settled.
    bool isBehindRound(const VFrame& frame) const noexcept { return frame.m_order > roundEnd; }

    // Failures

    /// Called when the update of \p frame has failed. Makes the frames that read its outputs
    /// wait.
    void fail(VFrame& frame) noexcept;

    /// Keeps the reason why the update of \p frame has failed.
    void keepReason(const VFrame& frame, const std::string& reason);

    /// Returns the reason of the failed frame; empty if it has none.
    std::string reasonOf(const VFrame& frame) const;

    /// Called when the update of \p frame has succeeded after a failure. Frames that wait only
    /// for it stop waiting. If its loop was stopped, the other members become due.
    void recover(VFrame& frame) noexcept;

    /// Determines whether a frame whose connections changed has to wait.
    void updateWaiting(VFrame& frame) noexcept;

    /// Returns true if the value in the cell comes from an object that failed or waits.
    static bool isMissing(VFrame& frame, std::uint32_t cell) noexcept;

    /// Marks the failed inputs in the cells of an object that accepts failed inputs.
    void markMissing(VFrame& frame) noexcept;

    /// Returns true if the value in the cell has changed since the last successful update.
    static bool hasChanged(VFrame& frame, std::uint32_t cell) noexcept;

    /// Gives the outputs of the frame's object their initial values, without notifying their
    /// readers. The object then has seen none of its inputs.
    static void forgetResults(VFrame& frame);

    /// Returns the failed objects that the frame's object waits for, nearest first.
    std::vector<VObject*> failedSources(VFrame& frame);

    /// Returns the frames whose last update failed, in evaluation order.
    std::vector<VFrame*> failedFrames();

    /// Returns the number of objects that wait for the object of a failed frame.
    std::size_t countWaiting(VFrame& frame);

    // History

    /// Notes that an update of the frame's object depends on earlier ones. The first note of a
    /// pool is kept. Threads that run concurrent updates may call it.
    void noteHistory(const VFrame& frame, VHistory::Cause cause, std::uint32_t cell) noexcept;

    /// Returns what was noted, or else an object with a frame that declares it; see
    /// `VScheduler::history`.
    std::optional<VHistory> history();

    // For `FrameHooks`

    void dropFrame(VFrame& frame) noexcept;
    void unlinkCell(VFrame& frame, std::uint32_t cell) noexcept;
    void keepOutside(VFrame& frame, const VSlot& slot);
    static void forgetReaders(VFrame& frame, std::uint32_t cell) noexcept;
    static void readSwitches(VFrame& frame) noexcept;
    static void becameStale(VFrame& frame) noexcept { frame.m_isStale = true; }
    static void forgetRewiring(VFrame& frame) noexcept;
    static void rewiredCell(VFrame& frame, std::uint32_t cell) noexcept;
    static PoolState& of(VFrame& frame) noexcept { return *frame.m_pool; }

    /// Releases the objects that were removed during their updates.
    void releaseHeldObjects() noexcept;

    /// Frees a dead frame that nothing refers to.
    void freeFrame(VFrame& frame) noexcept;

    /// Announces the changes that could not be announced for lack of memory.
    void announcePending();

    /// Keeps an object alive until its running updates, in all pools, have returned.
    static void holdWhileUpdating(const StrongPtr<VManagedObjectBase>& object);

    // Data that the scheduler uses

    DueQueue due;
    // Members of loops that became due at or before the running one. They wait until the
    // members after it have run; otherwise two members could keep the others from ever
    // running.
    DueQueue nextRound;
    std::size_t dueCount = 0;                   // living frames in both queues
    std::int64_t loopPosition = -1;             // order of the running member of a loop, else -1
    std::uint32_t roundEnd = ~std::uint32_t{0}; // frames of larger order must wait until the loop has settled
    std::uint32_t pass = 0;
    bool isRunning = false;
    bool hasListeners = false; // a value in a cell has, or had, listeners
    bool hasPending = false;   // a change could not be announced for lack of memory
    std::size_t waitingCount = 0;
    VObserver* observer = nullptr;
    Recorder* recorder = nullptr; // while objects run concurrently
    std::unique_ptr<RunMemory> runMemory;
    std::vector<StrongPtr<VManagedObjectBase>> heldObjects; // removed during their update

private:
    struct Variable {
        StrongPtr<VValueBase> value;
        bool isFromFailed = false;
    };

    struct NamedVariable {
        std::string name;
        StrongPtr<VValueBase> value;
        const VParameter* parameter;
    };

    friend class Orla::VFrame;
    friend class Orla::ValuePool;

    void forget(const VParameter& parameter) noexcept;
    bool bind(VSlotContainer& container) noexcept;
    VFrame* makeFrame(VSlotContainer& container);
    void growCells(VFrame& frame, std::uint32_t count);
    void removeFromTable(const VFrame& frame) noexcept;
    std::size_t homeOf(const VSlotContainer& container) const noexcept;
    VValueBase* fillOwned(VFrame& frame, const VSlot& slot);
    void resolve(VFrame& frame, const VSlot& slot);
    void replaceForReaders(const VParameter& parameter) noexcept;
    const NamedVariable* namedVariable(const std::string& name) const;
    void enterName(const VParameter& parameter, const StrongPtr<VValueBase>& value);
    void removeName(const VParameter& parameter) noexcept;
    void releaseCell(VFrame& frame, std::uint32_t cell) noexcept;
    void enqueueInLoop(VFrame& frame) noexcept;
    void restartLoop(VFrame& start) noexcept;
    void runIfMissed(VFrame& frame) noexcept;
    void sortIfOutOfOrder() noexcept
    {
        if (m_isOutOfOrder) [[unlikely]]
            sortDue();
    }
    void sortDue() noexcept;
    void discard(VFrame& dead) noexcept;
    VFrame* sourceOfResult(const VSlot& slot) noexcept;
    const VParameter* parameterOf(const VFrame& frame, std::uint32_t cell) const noexcept;
    template<class Function>
    void forEachReader(VFrame& frame, Function&& function) noexcept;
    bool readsMissing(VFrame& frame) noexcept;
    static bool lacksResults(const VFrame& frame) noexcept { return frame.m_hasFailed || frame.m_isWaiting; }
    static bool makesWait(const VFrame& source, const VFrame& reader) noexcept;
    void markWaiting(VFrame& start) noexcept;
    void release(VFrame& start) noexcept;

    void setWaiting(VFrame& frame, bool isWaiting) noexcept;

    /// Locks the tables if updates of the pool run concurrently.
    std::unique_lock<std::recursive_mutex> lockTables() const
    {
        return recorder ? std::unique_lock(recorder->mutex()) : std::unique_lock<std::recursive_mutex>();
    }

    static std::uint64_t keyOf(const void* pointer) noexcept
    {
        return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pointer));
    }

    ValuePool* m_pool;
    StrongPtr<NetworkCore> m_network;
    std::vector<VFrame*> m_frames; // open addressing by the container's index; null where free
    std::size_t m_frameCount = 0;
    IdTable<Variable> m_variables; // of parameters without a cell, by address
    std::vector<NamedVariable> m_names;
    std::unordered_map<std::string, std::size_t> m_nameIndex; // only for many variables
    IdTable<double> m_precisions;                             // by frame
    std::unordered_map<const VFrame*, std::string> m_reasons; // of failed frames
    std::vector<ValuePool*> m_views;                          // of this pool
    std::size_t m_deadCount = 0;                              // dead frames in the queues
    bool m_isOutOfOrder = false;
    std::unique_ptr<VHistory> m_history; // written once, before the flag
    std::atomic<bool> m_hasHistory{false};
    SpinLock m_historyLock;
    bool m_isFreeOfDeclarations = false; // no frame declares history; until frames or connections change
};

/// The head of a list of several frames that read one value. The pointers follow it in memory.
struct ReaderList {
    std::size_t count = 0;
    VFrame** frames() noexcept { return reinterpret_cast<VFrame**>(this + 1); }
};

template<class Function>
void PoolState::forEachKnownReader(VFrame& frame, std::uint32_t cell, Function&& function)
{
    if ((frame.flags(cell) & VFrame::OneReader) != 0) {
        function(*static_cast<VFrame*>(frame.cell(cell).link));
        return;
    }
    if ((frame.flags(cell) & VFrame::ManyReaders) == 0)
        return;
    auto& readers = *static_cast<ReaderList*>(frame.cell(cell).link);
    VFrame** const frames = readers.frames();
    const std::size_t count = readers.count;
    for (std::size_t i = 0; i < count; ++i) {
#if defined(__GNUC__)
        // A clock may have a hundred thousand readers, scattered in memory.
        constexpr std::size_t Ahead = 8;
        if (i + Ahead < count)
            __builtin_prefetch(frames[i + Ahead]);
#endif
        function(*frames[i]);
    }
}

} // namespace Detail

} // namespace Orla
