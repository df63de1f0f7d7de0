#pragma once

#include "Yr/RecursiveLock.h"

namespace Yr {

// The process-wide lock under which shared defaults are created. Callers test
// for the instance before taking it and again after, so the common path takes
// no lock:
//
//     if (s_default.load() == nullptr) {
//         Locker locker(SingletonLock::GetLock());
//         if (s_default.load() == nullptr) s_default.store(new Options);
//     }
//
// Re-entrant, because creating one default may create another.
class SingletonLock {
public:
    SingletonLock() = delete;

    // Never destroyed: defaults may still be asked for while statics are torn down.
    static RecursiveLock& GetLock();
};

}  // namespace Yr
