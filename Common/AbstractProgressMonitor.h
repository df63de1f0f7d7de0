#pragma once

#include "Common/ProgressMonitor.h"

namespace Morvelan::Common {

// Stores the range and the progress and ignores the rest; concrete monitors
// override what they act on.
class AbstractProgressMonitor : public ProgressMonitor {
public:
    void SetMaximum(Yr::UInt64 maximum) override { m_maximum = maximum; }
    Yr::UInt64 GetMaximum() const override { return m_maximum; }
    void SetMinimum(Yr::UInt64 minimum) override { m_minimum = minimum; }
    Yr::UInt64 GetMinimum() const override { return m_minimum; }
    bool IsCanceled() const override { return false; }
    void SetProgress(Yr::UInt64 progress) override { m_progress = progress; }
    void Started() override {}
    void Failed(const Yr::YrException&) override {}
    void Done() override {}

protected:
    AbstractProgressMonitor() = default;
    AbstractProgressMonitor(const AbstractProgressMonitor&) = default;
    AbstractProgressMonitor& operator=(const AbstractProgressMonitor&) = default;
    // For derived monitors that draw it.
    Yr::UInt64 GetProgress() const { return m_progress; }

private:
    Yr::UInt64 m_progress = 0;
    Yr::UInt64 m_maximum = 0;
    Yr::UInt64 m_minimum = 0;
};

}  // namespace Morvelan::Common
