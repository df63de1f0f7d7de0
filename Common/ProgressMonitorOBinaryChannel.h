#pragma once

#include "Common/ProgressMonitor.h"
#include "Yr/FilterOBinaryChannel.h"

namespace Morvelan::Common {

// Passes writes through and reports the running total of bytes written as
// the monitor's progress. A faulty monitor never breaks the write: its
// YrExceptions are swallowed (all but out-of-memory printed). Range and
// lifecycle are the caller's to report. The monitor is not owned and must
// outlive the channel; a borrowed inner channel too, a shared one is kept
// alive. Close() closes the inner channel; destruction leaves it open.
class ProgressMonitorOBinaryChannel final : public Yr::FilterOBinaryChannel {
public:
    ProgressMonitorOBinaryChannel(Yr::OBinaryChannel& inner, ProgressMonitor& monitor);
    ProgressMonitorOBinaryChannel(const Yr::Ref<Yr::OBinaryChannel>& inner,
                                  ProgressMonitor& monitor);
    ~ProgressMonitorOBinaryChannel() override;

    // Reported once the inner channel took the bytes.
    void Write(const char* buffer, Yr::UInt32 size) override;

private:
    void UpdateProgressMonitor(Yr::UInt32 count);

    ProgressMonitor& m_monitor;
    Yr::UInt64 m_transferred = 0;
};

}  // namespace Morvelan::Common
