#pragma once

#include <mutex>

namespace Yr {

// A lock its holder may acquire again; each Acquire needs its own Release.
class RecursiveLock {
public:
    RecursiveLock() = default;
    RecursiveLock(const RecursiveLock&) = delete;
    RecursiveLock& operator=(const RecursiveLock&) = delete;

    void Acquire() { m_mutex.lock(); }
    void Release() { m_mutex.unlock(); }
    bool TryAcquire() { return m_mutex.try_lock(); }

    void lock() { Acquire(); }
    void unlock() { Release(); }
    bool try_lock() { return TryAcquire(); }

private:
    std::recursive_mutex m_mutex;
};

}  // namespace Yr
