#include <trellis/detail/DueQueue.hpp>

#include <algorithm>
#include <functional>
#include <new>

namespace Orla::Detail {

void DueQueue::append(Bucket& bucket, VFrame& frame) noexcept
{
    frame.m_nextDue = nullptr;
    (bucket.last ? bucket.last->m_nextDue : bucket.first) = &frame;
    bucket.last = &frame;
}

void DueQueue::pushAmongMany(VFrame& frame) noexcept
{
    const std::uint32_t order = frame.m_order;
    for (std::size_t i = 0; i < m_nearCount; ++i) {
        if (m_near[i].order == order) {
            append(m_near[i], frame);
            return;
        }
    }
    Bucket* bucket = m_far.find(order + std::uint64_t{1});
    if (!bucket && m_nearCount < NearBuckets) {
        NearBucket& fresh = m_near[m_nearCount++];
        fresh = NearBucket{};
        fresh.order = order;
        bucket = &fresh;
    } else if (!bucket) {
        try {
            // Reserved before the bucket is created: a failure must leave nothing half done.
            if (m_farOrders.size() == m_farOrders.capacity())
                m_farOrders.reserve(std::max<std::size_t>(16, 2 * m_farOrders.size()));
            bucket = &m_far[order + std::uint64_t{1}];
            m_farOrders.push_back(order);
            std::ranges::push_heap(m_farOrders, std::greater{});
        } catch (const std::bad_alloc&) {
            bucket = &m_unsorted;
        }
    }
    append(*bucket, frame);
}

// Tries again to sort the frames for which memory was short.
void DueQueue::sortIn() noexcept
{
    VFrame* frame = m_unsorted.first;
    m_unsorted = {};
    while (frame) {
        VFrame* const next = frame->m_nextDue;
        pushAmongMany(*frame);
        frame = next;
    }
    if (!m_unsorted.first)
        return;
    // Memory is still short: move the earliest frame to the front.
    VFrame* earliest = m_unsorted.first;
    VFrame* before = nullptr;
    for (VFrame* each = m_unsorted.first; each->m_nextDue; each = each->m_nextDue) {
        if (each->m_nextDue->m_order < earliest->m_order) {
            before = each;
            earliest = each->m_nextDue;
        }
    }
    if (before) {
        before->m_nextDue = earliest->m_nextDue;
        if (!before->m_nextDue)
            m_unsorted.last = before;
        earliest->m_nextDue = m_unsorted.first;
        m_unsorted.first = earliest;
    }
}

DueQueue::Bucket& DueQueue::nextBucket() noexcept
{
    if (m_unsorted.first) [[unlikely]]
        sortIn();
    Bucket* next = nullptr;
    std::uint32_t order = ~std::uint32_t{0};
    for (std::size_t i = 0; i < m_nearCount; ++i) {
        if (m_near[i].order <= order) {
            next = &m_near[i];
            order = m_near[i].order;
        }
    }
    if (!m_farOrders.empty() && (!next || m_farOrders.front() < order)) {
        next = m_far.find(m_farOrders.front() + std::uint64_t{1});
        order = m_farOrders.front();
    }
    if (m_unsorted.first && (!next || m_unsorted.first->m_order < order)) [[unlikely]]
        next = &m_unsorted;
    return *next;
}

VFrame& DueQueue::front() noexcept
{
    return m_only ? *m_only : *nextBucket().first;
}

VFrame& DueQueue::popAmongMany() noexcept
{
    Bucket& bucket = nextBucket();
    VFrame& frame = *bucket.first;
    bucket.first = frame.m_nextDue;
    if (bucket.first) {
        bucket.first->prefetchForUpdate();
        return frame;
    }
    bucket.last = nullptr;
    if (&bucket >= m_near && &bucket < m_near + NearBuckets)
        static_cast<NearBucket&>(bucket) = m_near[--m_nearCount];
    else if (&bucket != &m_unsorted)
        dropEmptyFar();
    return frame;
}

void DueQueue::dropEmptyFar() noexcept
{
    m_far.erase(m_farOrders.front() + std::uint64_t{1});
    std::ranges::pop_heap(m_farOrders, std::greater{});
    m_farOrders.pop_back();
}

void DueQueue::moveTo(DueQueue& other) noexcept
{
    // A list of all frames first: `other` may be this queue.
    Bucket all;
    while (!empty())
        append(all, pop());
    for (VFrame* frame = all.first; frame;) {
        VFrame* const next = frame->m_nextDue;
        other.push(*frame);
        frame = next;
    }
}

void DueQueue::sortAgain() noexcept
{
    moveTo(*this);
}

} // namespace Orla::Detail
