#include "Common/PagedCounter.h"

#include "Common/StandardMemoryAllocator.h"

namespace Morvelan::Common {

Yr::PagedSlotPool& PagedCounter::GetSlotPool() {
    static Yr::PagedSlotPool& pool = StandardMemoryAllocator::CreatePagedSlotPool();
    return pool;
}

}  // namespace Morvelan::Common
