#pragma once

#include <cstddef>

namespace Yr {
class PagedSlotPool;
}

namespace Morvelan::Common {

// Heap blocks from the base layer's raw allocation. When the heap has none to
// give, the registered failure handlers are asked in turn to release memory
// and the allocation is retried after the first that did; when none can,
// Yr::OutOfMemoryException is thrown. Thread-safe as the heap is. Handlers
// run on the allocating thread, under whatever locks it holds.
class StandardMemoryAllocator final {
public:
    StandardMemoryAllocator() = delete;

    static void* Allocate(std::size_t size);
    // `alignment` is a power of two; the block is released with Free as well.
    static void* Allocate(std::size_t size, std::size_t alignment);
    // Ignores null.
    static void Free(void* pointer);
    // A slot pool whose pages come from here. Never destroyed: slots may be
    // returned by other statics after main.
    static Yr::PagedSlotPool& CreatePagedSlotPool();
};

}  // namespace Morvelan::Common
