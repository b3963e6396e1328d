#pragma once

#include <atomic>
#include <cstddef>
#include <span>

namespace Orla {

class VObject;

namespace Detail {

/// The object that each thread is updating. May be read in a signal handler, so it needs no
/// lock.
class RunningObjects {
public:
    /// Returns where this thread keeps the object that it is updating; null between updates.
    static std::atomic<const VObject*>& ofThisThread() noexcept
    {
        if (!t_record) [[unlikely]]
            claimRecord();
        return t_record->object;
    }

    /// Returns the object that this thread is updating, or null.
    static const VObject* inThisThread() noexcept;

    /// Copies the running objects to \p objects, that of this thread first. Returns how many
    /// were copied.
    static std::size_t list(std::span<const VObject*> objects) noexcept;

private:
    struct Record {
        std::atomic<const VObject*> object{nullptr};
        std::atomic<bool> isUsed{true};
        Record* next = nullptr;
    };

    struct Release;

    static void claimRecord() noexcept;

#if defined(__GNUC__) && !defined(_WIN32)
    __attribute__((tls_model("initial-exec")))
#endif
    static thread_local constinit Record* t_record;

    // Records are reused but never destroyed: a signal handler may be reading them.
    static std::atomic<Record*> s_first;
};

} // namespace Detail

} // namespace Orla
