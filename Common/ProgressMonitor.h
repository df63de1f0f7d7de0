#pragma once

#include "Yr/Types.h"

namespace Yr {
class YrException;
}

namespace Morvelan::Common {

// What a long operation reports to: a range, a current value within it,
// when it started, failed or finished, and whether it should stop. There is
// no progress getter: a monitor is written to, not read.
class ProgressMonitor {
public:
    virtual ~ProgressMonitor() = default;
    virtual void SetMaximum(Yr::UInt64 maximum) = 0;
    virtual Yr::UInt64 GetMaximum() const = 0;
    virtual void SetMinimum(Yr::UInt64 minimum) = 0;
    virtual Yr::UInt64 GetMinimum() const = 0;
    // Polled by the operation, which stops at its next safe point.
    virtual bool IsCanceled() const = 0;
    virtual void SetProgress(Yr::UInt64 progress) = 0;
    virtual void Started() = 0;
    virtual void Failed(const Yr::YrException& failure) = 0;
    virtual void Done() = 0;

protected:
    ProgressMonitor() = default;
    ProgressMonitor(const ProgressMonitor&) = default;
    ProgressMonitor& operator=(const ProgressMonitor&) = default;
};

}  // namespace Morvelan::Common
