#include "Yr/Lock.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "Yr/Condition.h"
#include "Yr/SpinLock.h"

namespace {

TEST(LockTest, SpinLockExcludesOtherThreads) {
    Yr::SpinLock lock;
    long counter = 0;  // unsynchronised: only the lock keeps updates from being lost
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20000; ++i) {
                Yr::Locker locker(lock);
                ++counter;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(counter, 80000);
}

TEST(LockTest, SignalWakesAWaiterThatHoldsTheLockAgain) {
    Yr::Lock lock;
    Yr::Condition condition;
    bool waiting = false, ready = false, heldAfterWait = false;
    std::thread waiter([&] {
        Yr::Locker locker(lock);
        waiting = true;
        while (!ready) condition.Wait(lock);
        std::thread([&] { heldAfterWait = !lock.TryAcquire(); }).join();
    });
    // Signal only once the waiter is inside Wait, so the wake-up is what ends it.
    for (bool inWait = false; !inWait; std::this_thread::yield()) {
        Yr::Locker locker(lock);
        inWait = waiting;
    }
    {
        Yr::Locker locker(lock);
        ready = true;
        condition.Signal();
    }
    waiter.join();
    EXPECT_TRUE(heldAfterWait);
}

}  // namespace
