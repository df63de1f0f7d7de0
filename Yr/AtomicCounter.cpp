#include "Yr/AtomicCounter.h"

#include "Yr/MemoryManager.h"

namespace Yr {
namespace {

void* AllocatePage() {
    return MemoryManager::AllocateAligned(PagedSlotPool::kPageSize, PagedSlotPool::kPageSize);
}

void FreePage(void* page) {
    MemoryManager::Free(page);
}

}  // namespace

PagedSlotPool& AtomicCounter::GetSlotPool() {
    // Never destroyed: Refs held by other statics may be released after main.
    static PagedSlotPool* pool = new PagedSlotPool(&AllocatePage, &FreePage, true);
    return *pool;
}

}  // namespace Yr
