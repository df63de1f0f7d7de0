#include "Yr/Ref.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "Yr/Exceptions.h"
#include "Yr/MemoryManager.h"

namespace {

using Yr::Ref;

// Counts its own deletions in a counter the test owns.
class Tracked {
public:
    explicit Tracked(std::atomic<int>& deletions) : m_deletions(deletions) {}
    virtual ~Tracked() { ++m_deletions; }
    int m_value = 7;

private:
    std::atomic<int>& m_deletions;
};

class DerivedTracked : public Tracked {
public:
    using Tracked::Tracked;
    ~DerivedTracked() override { ++s_derivedDeletions; }
    static inline int s_derivedDeletions = 0;
};

// Fails every allocation while installed; frees go on to the source it replaced.
class ScopedFailingSource final : public Yr::RawMemorySource {
public:
    ScopedFailingSource() : m_previous(Yr::MemoryManager::SetRawMemorySource(this)) {}
    ~ScopedFailingSource() override { Yr::MemoryManager::SetRawMemorySource(m_previous); }
    void* Allocate(std::size_t, std::size_t) override { return nullptr; }
    void Free(void* pointer) override { m_previous->Free(pointer); }

private:
    Yr::RawMemorySource* m_previous;
};

TEST(RefTest, LastOwnerDeletesExactlyOnceWhicheverIsReleasedFirst) {
    for (const bool originalFirst : {true, false}) {
        SCOPED_TRACE(originalFirst ? "original released first" : "copy released first");
        std::atomic<int> deletions{0};
        Ref<Tracked> original(new Tracked(deletions));
        Ref<Tracked> copy;
        copy = original;
        copy = copy;  // self-assignment neither deletes nor leaks a count
        Ref<Tracked> moved(std::move(copy));
        EXPECT_TRUE(copy.IsNull());
        (originalFirst ? original : moved).Reset();
        EXPECT_EQ(deletions, 0);
        (originalFirst ? moved : original).Reset();
        EXPECT_EQ(deletions, 1);
    }
}

TEST(RefTest, NotOwnedRefNeverDeletes) {
    std::atomic<int> deletions{0};
    {
        Tracked local(deletions);
        Ref<Tracked> lent(local, Yr::NotOwned());
        {
            const Ref<Tracked> copy = lent;
            EXPECT_EQ(copy->m_value, 7);
        }
        lent.Reset();
        EXPECT_EQ(deletions, 0);
    }
    EXPECT_EQ(deletions, 1);  // only the stack object's own end
}

TEST(RefTest, CopiesReleasedConcurrentlyDeleteOnce) {
    constexpr int kThreads = 8;
    constexpr int kCopies = 10000;
    std::atomic<int> deletions{0};
    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    {
        const Ref<Tracked> shared(new Tracked(deletions));
        for (int t = 0; t < kThreads; ++t) {
            threads.emplace_back([shared, &go] {
                while (!go.load()) std::this_thread::yield();
                std::vector<Ref<Tracked>> copies(kCopies, shared);
                for (auto& copy : copies) copy.Reset();
            });
        }
    }
    // The threads now hold the only owners; the last of them deletes.
    go = true;
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(deletions, 1);
}

TEST(RefTest, UpcastSharesTheCountAndDeletesThroughTheBase) {
    std::atomic<int> deletions{0};
    DerivedTracked::s_derivedDeletions = 0;
    Ref<DerivedTracked> derived(new DerivedTracked(deletions));
    Ref<Tracked> base = derived;
    Ref<Tracked> movedBase{Ref<DerivedTracked>(derived)};
    EXPECT_EQ(base.Get(), derived.Get());
    derived.Reset();
    base.Reset();
    EXPECT_EQ(deletions, 0);
    movedBase.Reset();
    EXPECT_EQ(deletions, 1);
    EXPECT_EQ(DerivedTracked::s_derivedDeletions, 1);
}

TEST(RefTest, EmptyRefDereferenceThrowsNullReference) {
    const Ref<Tracked> empty;
    EXPECT_THROW((void)empty->m_value, Yr::NullReferenceException);
    try {
        (void)*empty;
        FAIL() << "no exception";
    } catch (const Yr::NullReferenceException& e) {
        EXPECT_EQ(e.GetMessage().ToUtf8(), "Null reference.");
        EXPECT_EQ(e.GetErrorCode(), -50);
    }
}

TEST(RefTest, CounterAllocationFailureDeletesTheObject) {
    std::atomic<int> deletions{0};
    std::vector<Ref<Tracked>> made;
    bool threw = false;
    {
        ScopedFailingSource failing;
        // Slots left in the pool's pages serve the first requests; the first
        // counter that needs a new page fails.
        while (!threw && made.size() < 100000) {
            try {
                made.emplace_back(new Tracked(deletions));
            } catch (const Yr::OutOfMemoryException&) {
                threw = true;
            }
        }
    }
    ASSERT_TRUE(threw);
    EXPECT_EQ(deletions, 1);
    const int owned = static_cast<int>(made.size());
    made.clear();
    EXPECT_EQ(deletions, owned + 1);
}

}  // namespace
