#pragma once

#include <atomic>
#include <thread>

namespace Yr {

// A busy-waiting lock for sections of a few instructions. Not recursive.
// Waiters spin on a plain read and yield, so a holder that was preempted on a
// busy machine gets its processor back.
class SpinLock {
public:
    SpinLock() = default;
    SpinLock(const SpinLock&) = delete;
    SpinLock& operator=(const SpinLock&) = delete;

    void Acquire() {
        while (m_flag.test_and_set(std::memory_order_acquire)) {
            while (m_flag.test(std::memory_order_relaxed)) std::this_thread::yield();
        }
    }
    void Release() { m_flag.clear(std::memory_order_release); }
    bool TryAcquire() { return !m_flag.test_and_set(std::memory_order_acquire); }

    void lock() { Acquire(); }
    void unlock() { Release(); }
    bool try_lock() { return TryAcquire(); }

private:
    std::atomic_flag m_flag;
};

}  // namespace Yr
