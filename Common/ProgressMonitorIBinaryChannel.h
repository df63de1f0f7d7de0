#pragma once

#include "Common/ProgressMonitor.h"
#include "Yr/FilterIBinaryChannel.h"

namespace Morvelan::Common {

// Passes reads through and reports the running total of bytes read as the
// monitor's progress. A faulty monitor never breaks the read: its
// YrExceptions are swallowed (all but out-of-memory printed). Range and
// lifecycle are the caller's to report. The monitor is not owned and must
// outlive the channel; a borrowed inner channel too, a shared one is kept
// alive. Close() closes the inner channel; destruction leaves it open.
class ProgressMonitorIBinaryChannel final : public Yr::FilterIBinaryChannel {
public:
    ProgressMonitorIBinaryChannel(Yr::IBinaryChannel& inner, ProgressMonitor& monitor);
    ProgressMonitorIBinaryChannel(const Yr::Ref<Yr::IBinaryChannel>& inner,
                                  ProgressMonitor& monitor);
    ~ProgressMonitorIBinaryChannel() override;

    using Yr::FilterIBinaryChannel::Read;
    // The end of the stream (0) is not reported.
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;

private:
    void UpdateProgressMonitor(Yr::UInt32 count);

    ProgressMonitor& m_monitor;
    Yr::UInt64 m_transferred = 0;
};

}  // namespace Morvelan::Common
