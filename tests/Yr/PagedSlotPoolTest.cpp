#include "Yr/PagedSlotPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

#include "Yr/MemoryManager.h"

namespace {

using Yr::PagedSlotPool;

std::atomic<int> g_pagesAllocated{0};
std::atomic<int> g_pagesFreed{0};

void* CountedAllocatePage() {
    ++g_pagesAllocated;
    return Yr::MemoryManager::AllocateAligned(4096, 4096);
}

void CountedFreePage(void* page) {
    ++g_pagesFreed;
    Yr::MemoryManager::Free(page);
}

TEST(PagedSlotPoolTest, PagesHold508SlotsAndEmptyOnesGoButTheReserve) {
    for (const bool reserve : {false, true}) {
        SCOPED_TRACE(reserve ? "with reserve" : "without reserve");
        g_pagesAllocated = g_pagesFreed = 0;
        {
            PagedSlotPool pool(&CountedAllocatePage, &CountedFreePage, reserve);
            std::set<void*> slots;
            for (int i = 0; i < 508; ++i) slots.insert(pool.Take());
            EXPECT_EQ(pool.GetPageCount(), 1u);
            slots.insert(pool.Take());
            EXPECT_EQ(pool.GetPageCount(), 2u);
            EXPECT_EQ(slots.size(), 509u);
            for (void* slot : slots) pool.Return(slot);
            EXPECT_EQ(pool.GetPageCount(), reserve ? 1u : 0u);
            for (int i = 0; i < 100; ++i) pool.Return(pool.Take());
            // Without the reserve, each churn maps a page.
            EXPECT_EQ(g_pagesAllocated, reserve ? 2 : 102);
        }
        EXPECT_EQ(g_pagesFreed, g_pagesAllocated);
    }
}

TEST(PagedSlotPoolTest, ReturnedNeighboursLeaveLiveSlotsIntact) {
    PagedSlotPool pool(&CountedAllocatePage, &CountedFreePage);
    std::vector<void*> slots(2 * 508 + 3);
    for (std::uint64_t i = 0; i < slots.size(); ++i) std::memcpy(slots[i] = pool.Take(), &i, 8);
    for (std::size_t i = 0; i < slots.size(); i += 2) pool.Return(slots[i]);
    for (std::size_t i = 0; i < slots.size(); i += 2) std::memset(slots[i] = pool.Take(), -1, 8);
    for (std::uint64_t i = 1; i < slots.size(); i += 2)
        EXPECT_EQ(std::memcmp(slots[i], &i, 8), 0) << i;
    for (void* slot : slots) pool.Return(slot);
    EXPECT_EQ(pool.GetPageCount(), 0u);
}

}  // namespace
