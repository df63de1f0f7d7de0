#include "Yr/PagedSlotPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <set>
#include <thread>
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

class PagedSlotPoolTest : public testing::Test {
protected:
    PagedSlotPoolTest() {
        g_pagesAllocated = 0;
        g_pagesFreed = 0;
    }

    std::vector<void*> Take(std::size_t count) {
        std::vector<void*> slots;
        for (std::size_t i = 0; i < count; ++i) slots.push_back(m_pool.Take());
        return slots;
    }

    PagedSlotPool m_pool{&CountedAllocatePage, &CountedFreePage};
};

std::uintptr_t PageOf(const void* slot) {
    return reinterpret_cast<std::uintptr_t>(slot) & ~std::uintptr_t{4095};
}

TEST_F(PagedSlotPoolTest, FiveHundredEightSlotsFillOnePage) {
    std::vector<void*> first = Take(508);
    EXPECT_EQ(m_pool.GetPageCount(), 1u);
    EXPECT_EQ(g_pagesAllocated, 1);
    void* extra = m_pool.Take();
    EXPECT_EQ(m_pool.GetPageCount(), 2u);
    EXPECT_EQ(g_pagesAllocated, 2);
    EXPECT_NE(PageOf(extra), PageOf(first[0]));

    // Giving back every slot of the full page releases it; the other stays.
    for (void* slot : first) m_pool.Return(slot);
    EXPECT_EQ(m_pool.GetPageCount(), 1u);
    EXPECT_EQ(g_pagesFreed, 1);
    m_pool.Return(extra);
    EXPECT_EQ(m_pool.GetPageCount(), 0u);
    EXPECT_EQ(g_pagesFreed, 2);
}

TEST_F(PagedSlotPoolTest, AReservePageSurvivesChurnButNotASecondEmptyPage) {
    PagedSlotPool pool(&CountedAllocatePage, &CountedFreePage, true);
    for (int i = 0; i < 1000; ++i) pool.Return(pool.Take());
    EXPECT_EQ(g_pagesAllocated, 1);
    EXPECT_EQ(g_pagesFreed, 0);

    std::vector<void*> slots;
    for (int i = 0; i < 509; ++i) slots.push_back(pool.Take());
    EXPECT_EQ(pool.GetPageCount(), 2u);
    for (void* slot : slots) pool.Return(slot);
    EXPECT_EQ(pool.GetPageCount(), 1u);
    EXPECT_EQ(g_pagesFreed, 1);
}

TEST_F(PagedSlotPoolTest, SlotsAreAlignedDistinctAndClearOfThePageHeader) {
    const std::vector<void*> slots = Take(2 * 508 + 3);
    const std::set<void*> distinct(slots.begin(), slots.end());
    EXPECT_EQ(distinct.size(), slots.size());
    for (void* slot : slots) {
        const auto address = reinterpret_cast<std::uintptr_t>(slot);
        EXPECT_EQ(address % 8, 0u);
        // Bytes 4064 and up of a page hold its free list and links.
        EXPECT_LT(address - PageOf(slot), 4064u);
    }

    // Each slot keeps all 8 of its bytes while its neighbours come and go.
    for (std::size_t i = 0; i < slots.size(); ++i) {
        const std::uint64_t pattern = 0x0101010101010101ull * (i % 251 + 1);
        std::memcpy(slots[i], &pattern, 8);
    }
    for (std::size_t i = 0; i < slots.size(); i += 2) m_pool.Return(slots[i]);
    const std::vector<void*> refill = Take(slots.size() / 2 + 1);
    for (void* slot : refill) std::memset(slot, 0xEE, 8);
    for (std::size_t i = 1; i < slots.size(); i += 2) {
        SCOPED_TRACE(i);
        std::uint64_t value;
        std::memcpy(&value, slots[i], 8);
        EXPECT_EQ(value, 0x0101010101010101ull * (i % 251 + 1));
        m_pool.Return(slots[i]);
    }
    for (void* slot : refill) m_pool.Return(slot);
    EXPECT_EQ(m_pool.GetPageCount(), 0u);
    EXPECT_EQ(g_pagesAllocated, g_pagesFreed);
}

TEST_F(PagedSlotPoolTest, ConcurrentTakeAndReturnKeepSlotsPrivate) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 20;
    constexpr std::size_t kSlotsPerRound = 700;
    std::atomic<int> corrupted{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([this, t, &corrupted] {
            const std::uint64_t mark = 0xA5A5A5A500000000ull + static_cast<std::uint64_t>(t);
            for (int round = 0; round < kRounds; ++round) {
                std::vector<void*> mine;
                for (std::size_t i = 0; i < kSlotsPerRound; ++i) {
                    mine.push_back(m_pool.Take());
                    std::memcpy(mine.back(), &mark, 8);
                }
                for (void* slot : mine) {
                    std::uint64_t value;
                    std::memcpy(&value, slot, 8);
                    if (value != mark) ++corrupted;
                    m_pool.Return(slot);
                }
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(corrupted, 0);
    EXPECT_EQ(m_pool.GetPageCount(), 0u);
    EXPECT_EQ(g_pagesAllocated, g_pagesFreed);
}

}  // namespace
