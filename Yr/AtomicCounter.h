#pragma once

#include <atomic>
#include <cstddef>

#include "Yr/PagedSlotAllocated.h"
#include "Yr/Types.h"

namespace Yr {

// The shared count behind a Ref. Instances live in 8-byte slots of a paged
// pool rather than in heap blocks of their own.
class AtomicCounter : public PagedSlotAllocated<AtomicCounter> {
public:
    explicit AtomicCounter(Int64 initial = 0) : m_count(initial) {}
    AtomicCounter(const AtomicCounter&) = delete;
    AtomicCounter& operator=(const AtomicCounter&) = delete;

    // Both return the new count.
    Int64 Increment() { return m_count.fetch_add(1, std::memory_order_relaxed) + 1; }
    Int64 Decrement() { return m_count.fetch_sub(1, std::memory_order_acq_rel) - 1; }
    Int64 GetCount() const { return m_count.load(std::memory_order_relaxed); }

    // Keeps one empty page in reserve: Refs come and go all the time.
    static PagedSlotPool& GetSlotPool();

private:
    std::atomic<Int64> m_count;
};

static_assert(sizeof(AtomicCounter) == 8);

}  // namespace Yr
