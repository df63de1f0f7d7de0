#pragma once

#include "Common/ProgressMonitor.h"
#include "Yr/FilterIBinaryChannel.h"

namespace Morvelan::Tool {

// Asks the monitor before each read whether the job was canceled, and then
// throws Yr::InterruptedException "Canceled." instead of reading: the job
// unwinds through its usual failure path and cleans up.
class CancelableIBinaryChannel final : public Yr::FilterIBinaryChannel {
public:
    CancelableIBinaryChannel(Yr::IBinaryChannel& inner, const Common::ProgressMonitor& monitor);

    using Yr::FilterIBinaryChannel::Read;
    Yr::UInt32 Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) override;

private:
    const Common::ProgressMonitor& m_monitor;
};

}  // namespace Morvelan::Tool
