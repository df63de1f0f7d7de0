#include <cstdint>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Common/PagedAtomicCounter.h"
#include "Common/PagedCounter.h"
#include "Yr/Exceptions.h"
#include "Yr/MemoryManager.h"
#include "Yr/Ref.h"

namespace {

using Morvelan::Common::PagedAtomicCounter;
using Morvelan::Common::PagedCounter;

constexpr std::uintptr_t kPageSize = 4096;

// The heap, counting what passes; refuses everything while m_failing is set.
class CountingMemorySource final : public Yr::RawMemorySource {
public:
    CountingMemorySource() : m_heap(Yr::MemoryManager::SetRawMemorySource(this)) {}
    ~CountingMemorySource() override { Yr::MemoryManager::SetRawMemorySource(m_heap); }
    void* Allocate(std::size_t size, std::size_t alignment) override {
        if (m_failing) return nullptr;
        ++m_allocations;
        EXPECT_EQ(size, kPageSize);
        EXPECT_EQ(alignment, kPageSize);
        return m_heap->Allocate(size, alignment);
    }
    void Free(void* pointer) override {
        ++m_frees;
        m_heap->Free(pointer);
    }

    int m_allocations = 0;
    int m_frees = 0;
    bool m_failing = false;

private:
    Yr::RawMemorySource* m_heap;
};

template <class Counter>
class PagedCounterTest : public testing::Test {};
using CounterTypes = testing::Types<PagedCounter, PagedAtomicCounter>;
TYPED_TEST_SUITE(PagedCounterTest, CounterTypes);

TYPED_TEST(PagedCounterTest, FillsPagesOf508AndReleasesEmptyOnes) {
    ASSERT_EQ(TypeParam::GetPageCount(), 0u) << "counters of an earlier test are still alive";
    CountingMemorySource source;
    std::vector<std::unique_ptr<TypeParam>> counters;
    std::set<std::uintptr_t> pages;
    for (int i = 0; i < 508; ++i) {
        counters.emplace_back(new TypeParam(0));
        pages.insert(reinterpret_cast<std::uintptr_t>(counters.back().get()) & ~(kPageSize - 1));
    }
    EXPECT_EQ(pages.size(), 1u);
    EXPECT_EQ(TypeParam::GetPageCount(), 1u);
    EXPECT_EQ(source.m_allocations, 1);

    counters.emplace_back(new TypeParam(0));
    EXPECT_EQ(TypeParam::GetPageCount(), 2u);
    EXPECT_EQ(source.m_allocations, 2);

    // A slot given back on the full page is taken again before the new page's.
    const void* freed = counters[100].get();
    counters[100].reset();
    counters[100].reset(new TypeParam(0));
    EXPECT_EQ(counters[100].get(), freed);

    counters.pop_back();
    EXPECT_EQ(TypeParam::GetPageCount(), 1u);
    EXPECT_EQ(source.m_frees, 1);
    counters.clear();
    EXPECT_EQ(TypeParam::GetPageCount(), 0u);
    EXPECT_EQ(source.m_frees, 2);
}

TYPED_TEST(PagedCounterTest, NoPageMeansOutOfMemory) {
    ASSERT_EQ(TypeParam::GetPageCount(), 0u);
    CountingMemorySource source;
    source.m_failing = true;
    EXPECT_THROW(new TypeParam(0), Yr::OutOfMemoryException);
    source.m_failing = false;
    std::unique_ptr<TypeParam> counter(new TypeParam(0));
    EXPECT_EQ(TypeParam::GetPageCount(), 1u);
}

TEST(PagedAtomicCounterTest, ThreadsShareCountersAndPages) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 2000;
    auto shared = std::make_unique<PagedAtomicCounter>(0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        // Each thread churns counters of its own through the one pool while
        // all of them hammer one count.
        threads.emplace_back([&shared] {
            std::vector<std::unique_ptr<PagedAtomicCounter>> own;
            for (int round = 0; round < kRounds; ++round) {
                shared->Increment();
                own.emplace_back(new PagedAtomicCounter(round));
                if (round % 3 == 0) own.erase(own.begin() + own.size() / 2);
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(shared->GetCount(), kThreads * kRounds);
    shared.reset();
    EXPECT_EQ(PagedAtomicCounter::GetPageCount(), 0u);
}

TEST(PagedAtomicCounterTest, CountsRefOwnersAcrossThreads) {
    struct Tracked {
        explicit Tracked(int& destroyed) : m_destroyed(destroyed) {}
        ~Tracked() { ++m_destroyed; }
        int& m_destroyed;
    };
    int destroyed = 0;
    {
        Yr::Ref<Tracked, PagedAtomicCounter> first(new Tracked(destroyed));
        EXPECT_EQ(PagedAtomicCounter::GetPageCount(), 1u);
        std::vector<Yr::Ref<Tracked, PagedAtomicCounter>> copies(10, first);
        std::vector<std::thread> threads;
        for (auto& copy : copies) threads.emplace_back([&copy] { copy.Reset(); });
        for (auto& thread : threads) thread.join();
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(PagedAtomicCounter::GetPageCount(), 0u);
}

}  // namespace
