#pragma once

#include <cassert>
#include <cstddef>

#include "Yr/PagedSlotPool.h"

namespace Yr {

// Makes `new Derived` take one 8-byte slot of Derived's own pool, which
// Derived provides as `static PagedSlotPool& GetSlotPool()`. Empty, so it
// adds nothing to Derived's size.
template <class Derived>
class PagedSlotAllocated {
public:
    // Throws OutOfMemoryException when no page can be had.
    static void* operator new(std::size_t size) {
        assert(size <= PagedSlotPool::kSlotSize);
        (void)size;
        return Derived::GetSlotPool().Take();
    }
    static void operator delete(void* slot) { Derived::GetSlotPool().Return(slot); }
    // One slot each: arrays would not fit.
    static void* operator new[](std::size_t size) = delete;
    static void operator delete[](void* slots) = delete;

    // Pages the pool holds now.
    static std::size_t GetPageCount() { return Derived::GetSlotPool().GetPageCount(); }

protected:
    PagedSlotAllocated() = default;
};

}  // namespace Yr
