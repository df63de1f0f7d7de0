#pragma once

#include <mutex>

namespace Yr {

class Condition;

// A plain, non-recursive mutex. The lowercase operations make it Lockable, so
// std::lock_guard, std::unique_lock and std::scoped_lock take it as they are.
// Acquiring a Lock the calling thread already holds deadlocks.
class Lock {
public:
    Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    // Inline: a lock round trip is most of a cache hit's cost.
    void Acquire() { m_mutex.lock(); }
    void Release() { m_mutex.unlock(); }
    // False when another thread holds the lock.
    bool TryAcquire() { return m_mutex.try_lock(); }

    void lock() { Acquire(); }
    void unlock() { Release(); }
    bool try_lock() { return TryAcquire(); }

private:
    // Waiting hands the mutex itself to the condition variable.
    friend class Condition;

    std::mutex m_mutex;
};

// Holds any lock with Acquire/Release for the scope: `Locker locker(m_lock);`.
template <class LockType>
class Locker {
public:
    explicit Locker(LockType& lock) : m_lock(lock) { m_lock.Acquire(); }
    Locker(const Locker&) = delete;
    Locker& operator=(const Locker&) = delete;
    ~Locker() { m_lock.Release(); }

private:
    LockType& m_lock;
};

}  // namespace Yr
