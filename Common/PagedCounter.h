#pragma once

#include <cstddef>

#include "Yr/PagedSlotAllocated.h"
#include "Yr/Types.h"

namespace Morvelan::Common {

// A plain 64-bit count for one thread at a time. Instances are not heap
// blocks of their own but 8-byte slots of 4096-byte pages shared by every
// PagedCounter of the process, so that millions of them stay cheap. new and
// delete may be called from any thread.
class PagedCounter final : public Yr::PagedSlotAllocated<PagedCounter> {
public:
    explicit PagedCounter(Yr::Int64 initial = 0) : m_count(initial) {}
    PagedCounter(const PagedCounter&) = delete;
    PagedCounter& operator=(const PagedCounter&) = delete;

    // Both return the new count.
    Yr::Int64 Increment() { return ++m_count; }
    Yr::Int64 Decrement() { return --m_count; }
    Yr::Int64 GetCount() const { return m_count; }

    // Out-of-memory handlers run under the pool's lock and must not delete
    // PagedCounters.
    static Yr::PagedSlotPool& GetSlotPool();

private:
    Yr::Int64 m_count;
};

static_assert(sizeof(PagedCounter) == 8);

}  // namespace Morvelan::Common
