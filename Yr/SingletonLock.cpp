#include "Yr/SingletonLock.h"

namespace Yr {

RecursiveLock& SingletonLock::GetLock() {
    static RecursiveLock* lock = new RecursiveLock;
    return *lock;
}

}  // namespace Yr
