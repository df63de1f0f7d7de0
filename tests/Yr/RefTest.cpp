#include "Yr/Ref.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"

namespace {

using Yr::Ref;

// Counts its own deletions in a counter the test owns.
struct Tracked {
    explicit Tracked(std::atomic<int>& deletions) : m_deletions(deletions) {}
    virtual ~Tracked() { ++m_deletions; }
    std::atomic<int>& m_deletions;
};

struct Derived : Tracked {
    using Tracked::Tracked;
};

TEST(RefTest, LastOwnerDeletesExactlyOnceWhicheverIsReleasedFirst) {
    for (const bool originalFirst : {true, false}) {
        std::atomic<int> deletions{0};
        Ref<Derived> original(new Derived(deletions));
        Ref<Tracked> copy;
        copy = original;  // the upcast shares the count
        copy = copy;      // self-assignment neither deletes nor leaks a count
        Ref<Tracked> moved(std::move(copy));
        originalFirst ? original.Reset() : moved.Reset();
        EXPECT_EQ(deletions, 0) << originalFirst;
        originalFirst ? moved.Reset() : original.Reset();
        EXPECT_EQ(deletions, 1) << originalFirst;
    }
}

TEST(RefTest, NotOwnedRefNeverDeletes) {
    std::atomic<int> deletions{0};
    Tracked local(deletions);
    Ref<Tracked> lent(local, Yr::NotOwned());
    Ref<Tracked>(lent).Reset();
    lent.Reset();
    EXPECT_EQ(deletions, 0);
}

TEST(RefTest, CopiesReleasedConcurrentlyDeleteOnce) {
    std::atomic<int> deletions{0};
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    {
        const Ref<Tracked> shared(new Tracked(deletions));
        for (int t = 0; t < 8; ++t) {
            threads.emplace_back([shared, &go] {
                while (!go) std::this_thread::yield();
                std::vector<Ref<Tracked>> copies(10000, shared);
            });
        }
    }
    go = true;  // the threads now hold the only owners; the last of them deletes
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(deletions, 1);
}

TEST(RefTest, EmptyRefDereferenceThrowsNullReference) {
    const Ref<Tracked> empty;
    Morvelan::Testing::ExpectYrException<Yr::NullReferenceException>([&] { (void)*empty; },
                                                                     "Null reference.", -50);
    EXPECT_THROW((void)empty.operator->(), Yr::NullReferenceException);
}

}  // namespace
