#include "Yr/AtomicCounter.h"

#include <cassert>

#include "Yr/MemoryManager.h"
#include "Yr/PagedSlotPool.h"

namespace Yr {
namespace {

void* AllocatePage() {
    return MemoryManager::AllocateAligned(PagedSlotPool::kPageSize, PagedSlotPool::kPageSize);
}

void FreePage(void* page) {
    MemoryManager::Free(page);
}

// Never destroyed: Refs held by other statics may be released after main.
PagedSlotPool& Pool() {
    static PagedSlotPool* pool = new PagedSlotPool(&AllocatePage, &FreePage, true);
    return *pool;
}

}  // namespace

void* AtomicCounter::operator new(std::size_t size) {
    assert(size <= PagedSlotPool::kSlotSize);
    (void)size;
    return Pool().Take();
}

void AtomicCounter::operator delete(void* slot) {
    Pool().Return(slot);
}

std::size_t AtomicCounter::GetPageCount() {
    return Pool().GetPageCount();
}

}  // namespace Yr
