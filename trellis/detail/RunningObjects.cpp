#include <trellis/detail/RunningObjects.hpp>

#include <new>

namespace Orla::Detail {

thread_local constinit RunningObjects::Record* RunningObjects::t_record = nullptr;
constinit std::atomic<RunningObjects::Record*> RunningObjects::s_first{nullptr};

/// Gives a thread's record back when the thread ends.
struct RunningObjects::Release {
    ~Release()
    {
        // An update that calls `exit` ends the thread's own data before it runs exit handlers,
        // and these ask which object is running.
        if (t_record->object.load(std::memory_order_relaxed))
            return;
        t_record->isUsed.store(false, std::memory_order_release);
        t_record = nullptr;
    }
};

void RunningObjects::claimRecord() noexcept
{
    for (Record* record = s_first.load(std::memory_order_acquire); record && !t_record; record = record->next) {
        bool isUsed = false;
        if (record->isUsed.compare_exchange_strong(isUsed, true, std::memory_order_acquire))
            t_record = record;
    }
    if (!t_record) {
        t_record = new (std::nothrow) Record;
        if (!t_record) {
            // The update must not fail for this. The record is not listed.
            static constinit Record theSpare;
            t_record = &theSpare;
            return;
        }
        t_record->next = s_first.load(std::memory_order_relaxed);
        while (!s_first.compare_exchange_weak(t_record->next, t_record, std::memory_order_release)) {}
    }
    static thread_local const Release release;
}

const VObject* RunningObjects::inThisThread() noexcept
{
    return t_record ? t_record->object.load(std::memory_order_relaxed) : nullptr;
}

std::size_t RunningObjects::list(std::span<const VObject*> objects) noexcept
{
    std::size_t count = 0;
    const auto add = [&](const Record& record) {
        const VObject* const object = record.object.load(std::memory_order_relaxed);
        if (object && count < objects.size())
            objects[count++] = object;
    };
    if (t_record)
        add(*t_record);
    for (const Record* record = s_first.load(std::memory_order_acquire); record; record = record->next) {
        if (record != t_record)
            add(*record);
    }
    return count;
}

} // namespace Orla::Detail
