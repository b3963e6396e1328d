#pragma once

#include <trellis/detail/IdTable.hpp>

#include <trellis/VFrame.hpp>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Orla::Detail {

/// The due frames of one pool, sorted by evaluation order and then by the order in which they
/// became due.
class DueQueue {
public:
    bool empty() const noexcept { return !m_only && !hasMany(); }

    /// Adds a frame. Never fails: without memory for a new order number, the frame is sorted
    /// later.
    void push(VFrame& frame) noexcept
    {
        if (!m_only && !hasMany()) {
            m_only = &frame;
            return;
        }
        if (m_only)
            pushAmongMany(*std::exchange(m_only, nullptr));
        pushAmongMany(frame);
    }

    /// Removes and returns the next frame.
    /// \pre The queue is not empty.
    VFrame& pop() noexcept { return m_only ? *std::exchange(m_only, nullptr) : popAmongMany(); }

    /// Returns the next frame, which stays in the queue.
    /// \pre The queue is not empty.
    VFrame& front() noexcept;

    /// Calls \p function with each frame until it returns false, near buckets first.
    template<class Function>
    void forEach(Function&& function)
    {
        if (m_only && !function(*m_only))
            return;
        for (std::size_t i = 0; i < m_nearCount; ++i) {
            for (VFrame* frame = m_near[i].first; frame; frame = frame->m_nextDue) {
                if (!function(*frame))
                    return;
            }
        }
        for (const std::uint32_t order : m_farOrders) {
            for (VFrame* frame = m_far.find(order + std::uint64_t{1})->first; frame; frame = frame->m_nextDue) {
                if (!function(*frame))
                    return;
            }
        }
    }

    /// Sorts all frames by their current order numbers.
    void sortAgain() noexcept;

    /// Moves all frames to \p other in their order.
    void moveTo(DueQueue& other) noexcept;

private:
    // The due frames with one order number, linked through the frames themselves.
    struct Bucket {
        VFrame* first = nullptr;
        VFrame* last = nullptr;
    };

    struct NearBucket : Bucket {
        std::uint32_t order = 0;
    };

    bool hasMany() const noexcept { return m_nearCount != 0 || !m_farOrders.empty() || m_unsorted.first; }
    void pushAmongMany(VFrame& frame) noexcept;
    VFrame& popAmongMany() noexcept;
    static void append(Bucket& bucket, VFrame& frame) noexcept;
    Bucket& nextBucket() noexcept;
    void dropEmptyFar() noexcept;
    void sortIn() noexcept;

    VFrame* m_only = nullptr; // a single frame, as in a chain, is not put into a bucket

    // At any time in a pass, nearly all due frames have one of a few order numbers, so a few
    // near buckets hold nearly all of them. The other buckets are found by number.
    static constexpr std::size_t NearBuckets = 4;
    NearBucket m_near[NearBuckets];
    std::size_t m_nearCount = 0;
    IdTable<Bucket> m_far;                  // by order number + 1
    std::vector<std::uint32_t> m_farOrders; // heap of the numbers in `m_far`, smallest first
    Bucket m_unsorted;                      // frames that could not be sorted for lack of memory
};

} // namespace Orla::Detail
