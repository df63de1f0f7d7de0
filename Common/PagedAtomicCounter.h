#pragma once

#include <atomic>
#include <cstddef>

#include "Yr/PagedSlotAllocated.h"
#include "Yr/Types.h"

namespace Morvelan::Common {

// A 64-bit count shared between threads, fit to be the counter of a
// Yr::Ref<T, PagedAtomicCounter>. Instances are 8-byte slots of 4096-byte
// pages shared by every PagedAtomicCounter of the process rather than heap
// blocks of their own. Every member may be called from any thread.
class PagedAtomicCounter final : public Yr::PagedSlotAllocated<PagedAtomicCounter> {
public:
    explicit PagedAtomicCounter(Yr::Int64 initial = 0) : m_count(initial) {}
    PagedAtomicCounter(const PagedAtomicCounter&) = delete;
    PagedAtomicCounter& operator=(const PagedAtomicCounter&) = delete;

    // Both return the new count. A decrement that reaches zero must see every
    // write made before the other decrements, since its caller then deletes.
    Yr::Int64 Increment() { return m_count.fetch_add(1, std::memory_order_relaxed) + 1; }
    Yr::Int64 Decrement() { return m_count.fetch_sub(1, std::memory_order_acq_rel) - 1; }
    Yr::Int64 GetCount() const { return m_count.load(std::memory_order_relaxed); }

    // Out-of-memory handlers run under the pool's lock and must not delete
    // PagedAtomicCounters.
    static Yr::PagedSlotPool& GetSlotPool();

private:
    std::atomic<Yr::Int64> m_count;
};

static_assert(sizeof(PagedAtomicCounter) == 8);

}  // namespace Morvelan::Common
