#include "Yr/Lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "Yr/Condition.h"
#include "Yr/RecursiveLock.h"
#include "Yr/SingletonLock.h"
#include "Yr/SpinLock.h"

namespace {

// Unsynchronised increments that only the lock keeps from losing updates.
template <class LockType>
long CountUnderLock() {
    constexpr int kThreads = 4;
    constexpr int kIncrements = 20000;
    LockType lock;
    long counter = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&lock, &counter, t] {
            for (int i = 0; i < kIncrements; ++i) {
                // Half through Locker, half through the standard guard.
                if (t % 2 == 0) {
                    Yr::Locker locker(lock);
                    ++counter;
                } else {
                    std::lock_guard<LockType> guard(lock);
                    ++counter;
                }
            }
        });
    }
    for (auto& thread : threads) thread.join();
    return counter;
}

TEST(LockTest, EveryLockExcludesOtherThreads) {
    EXPECT_EQ(CountUnderLock<Yr::Lock>(), 80000);
    EXPECT_EQ(CountUnderLock<Yr::SpinLock>(), 80000);
    EXPECT_EQ(CountUnderLock<Yr::RecursiveLock>(), 80000);
}

template <class LockType>
bool TryFromOtherThread(LockType& lock) {
    bool acquired = false;
    std::thread([&] {
        acquired = lock.TryAcquire();
        if (acquired) lock.Release();
    }).join();
    return acquired;
}

TEST(LockTest, TryAcquireFailsWhileAnotherThreadHolds) {
    Yr::Lock lock;
    Yr::SpinLock spin;
    {
        std::scoped_lock both(lock, spin);
        EXPECT_FALSE(TryFromOtherThread(lock));
        EXPECT_FALSE(TryFromOtherThread(spin));
    }
    EXPECT_TRUE(TryFromOtherThread(lock));
    EXPECT_TRUE(TryFromOtherThread(spin));
}

TEST(LockTest, RecursiveLockReentersAndNeedsEveryRelease) {
    Yr::RecursiveLock lock;
    lock.Acquire();
    {
        Yr::Locker again(lock);
        EXPECT_TRUE(lock.TryAcquire());
        lock.Release();
    }
    EXPECT_FALSE(TryFromOtherThread(lock));
    lock.Release();
    EXPECT_TRUE(TryFromOtherThread(lock));
}

TEST(LockTest, SignalAndBroadcastWakeWaitersThatHoldTheLockAgain) {
    for (const int waiterCount : {1, 3}) {
        SCOPED_TRACE(waiterCount);
        Yr::Lock lock;
        Yr::Condition condition;
        int waiting = 0;
        bool ready = false;
        int heldAfterWait = 0;
        std::vector<std::thread> waiters;
        for (int i = 0; i < waiterCount; ++i) {
            waiters.emplace_back([&] {
                Yr::Locker locker(lock);
                ++waiting;
                while (!ready) condition.Wait(lock);
                heldAfterWait += !TryFromOtherThread(lock);
            });
        }
        // Wake only once every waiter is inside Wait, so the wake-up is what ends it.
        for (bool allWaiting = false; !allWaiting; std::this_thread::yield()) {
            Yr::Locker locker(lock);
            allWaiting = waiting == waiterCount;
        }
        {
            Yr::Locker locker(lock);
            ready = true;
            if (waiterCount == 1)
                condition.Signal();
            else
                condition.Broadcast();
        }
        for (auto& waiter : waiters) waiter.join();
        EXPECT_EQ(heldAfterWait, waiterCount);
    }
}

TEST(LockTest, TimedWaitReportsTimeoutAndKeepsTheLock) {
    Yr::Lock lock;
    Yr::Condition condition;
    Yr::Locker locker(lock);
    bool signalled = true;
    // A spurious wake-up reports true; a timeout must report false, so one of
    // a few waits does.
    for (int attempt = 0; attempt < 5 && signalled; ++attempt) signalled = condition.Wait(lock, 10);
    EXPECT_FALSE(signalled);
    EXPECT_FALSE(TryFromOtherThread(lock));
}

TEST(LockTest, SingletonLockIsOneReentrantLockForAllThreads) {
    Yr::RecursiveLock* fromOtherThread = nullptr;
    std::thread([&] { fromOtherThread = &Yr::SingletonLock::GetLock(); }).join();
    EXPECT_EQ(&Yr::SingletonLock::GetLock(), fromOtherThread);

    Yr::Locker outer(Yr::SingletonLock::GetLock());
    Yr::Locker inner(Yr::SingletonLock::GetLock());
    EXPECT_FALSE(TryFromOtherThread(Yr::SingletonLock::GetLock()));
}

}  // namespace
