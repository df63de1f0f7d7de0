#pragma once

#include <cstddef>
#include <mutex>

#include "Yr/Types.h"

namespace Yr {

// Hands out 8-byte slots carved from 4096-byte pages, so that millions of
// small counters cost neither a heap block each nor the allocator's headers.
// Pages are aligned to their size: a slot finds its page by masking. A page
// whose slots are all returned is given back at once (but see
// keepOneEmptyPage). Thread-safe.
class PagedSlotPool {
public:
    static constexpr std::size_t kPageSize = 4096;
    static constexpr std::size_t kSlotSize = 8;
    static constexpr std::size_t kSlotsPerPage = 508;

    // Page memory comes from these; allocatePage returns kPageSize bytes
    // aligned to kPageSize or throws.
    using AllocatePageFunction = void* (*)();
    using FreePageFunction = void (*)(void*);

    // With `keepOneEmptyPage` the last page is kept when it empties, so that
    // a slot taken and returned over and over does not map a page each time.
    PagedSlotPool(AllocatePageFunction allocatePage, FreePageFunction freePage,
                  bool keepOneEmptyPage = false);
    // Gives back an empty reserve page; pages with live slots stay theirs.
    ~PagedSlotPool();
    PagedSlotPool(const PagedSlotPool&) = delete;
    PagedSlotPool& operator=(const PagedSlotPool&) = delete;

    void* Take();
    void Return(void* slot);
    std::size_t GetPageCount() const;

private:
    struct Page;

    void Link(Page* page);
    void Unlink(Page* page);

    AllocatePageFunction m_allocatePage;
    FreePageFunction m_freePage;
    bool m_keepOneEmptyPage;
    mutable std::mutex m_lock;
    Page* m_firstWithFreeSlots = nullptr;  // pages that have a free slot
    std::size_t m_pageCount = 0;
};

}  // namespace Yr
