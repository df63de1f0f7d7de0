#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "Yr/Lock.h"
#include "Yr/Types.h"

namespace Yr {

// A condition variable paired with a Lock. The caller holds the lock when it
// waits and holds it again when Wait returns. Wake-ups may be spurious:
// callers test their condition in a loop.
class Condition {
public:
    Condition() = default;
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;

    void Wait(Lock& lock) {
        std::unique_lock<std::mutex> held(lock.m_mutex, std::adopt_lock);
        m_condition.wait(held);
        // The caller keeps ownership; the unique_lock only lent it to the wait.
        held.release();
    }

    // False when the time ran out without a wake-up.
    bool Wait(Lock& lock, UInt32 milliseconds) {
        std::unique_lock<std::mutex> held(lock.m_mutex, std::adopt_lock);
        const auto status = m_condition.wait_for(held, std::chrono::milliseconds(milliseconds));
        held.release();
        return status == std::cv_status::no_timeout;
    }

    void Signal() { m_condition.notify_one(); }
    void Broadcast() { m_condition.notify_all(); }

private:
    std::condition_variable m_condition;
};

}  // namespace Yr
