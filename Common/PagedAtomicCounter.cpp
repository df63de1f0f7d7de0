#include "Common/PagedAtomicCounter.h"

#include <cassert>

#include "Common/StandardMemoryAllocator.h"
#include "Yr/PagedSlotPool.h"

namespace Morvelan::Common {
namespace {

// Pages aligned to their size, so a slot finds its page with a mask.
void* AllocatePage() {
    return StandardMemoryAllocator::Allocate(Yr::PagedSlotPool::kPageSize,
                                             Yr::PagedSlotPool::kPageSize);
}

void FreePage(void* page) {
    StandardMemoryAllocator::Free(page);
}

// Never destroyed: counters owned by other statics may be deleted after main.
Yr::PagedSlotPool& Pool() {
    static Yr::PagedSlotPool* pool = new Yr::PagedSlotPool(&AllocatePage, &FreePage);
    return *pool;
}

}  // namespace

void* PagedAtomicCounter::operator new(std::size_t size) {
    assert(size <= Yr::PagedSlotPool::kSlotSize);
    (void)size;
    return Pool().Take();
}

void PagedAtomicCounter::operator delete(void* slot) {
    Pool().Return(slot);
}

std::size_t PagedAtomicCounter::GetPageCount() {
    return Pool().GetPageCount();
}

}  // namespace Morvelan::Common
