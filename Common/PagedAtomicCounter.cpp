#include "Common/PagedAtomicCounter.h"

#include "Common/StandardMemoryAllocator.h"

namespace Morvelan::Common {

Yr::PagedSlotPool& PagedAtomicCounter::GetSlotPool() {
    static Yr::PagedSlotPool& pool = StandardMemoryAllocator::CreatePagedSlotPool();
    return pool;
}

}  // namespace Morvelan::Common
