#include "Yr/Lock.h"

namespace Yr {

void Lock::Acquire() {
    m_mutex.lock();
}

void Lock::Release() {
    m_mutex.unlock();
}

bool Lock::TryAcquire() {
    return m_mutex.try_lock();
}

}  // namespace Yr
