#include "cli/CancelableIBinaryChannel.h"

#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Tool {

CancelableIBinaryChannel::CancelableIBinaryChannel(Yr::IBinaryChannel& inner,
                                                   const Common::ProgressMonitor& monitor)
    : FilterIBinaryChannel(inner), m_monitor(monitor) {}

Yr::UInt32 CancelableIBinaryChannel::Read(char* buffer, Yr::UInt32 size, Yr::ReadSomeModeSelector) {
    if (m_monitor.IsCanceled())
        throw Yr::InterruptedException("Canceled.", "cli/CancelableIBinaryChannel", __LINE__,
                                       Yr::kIOErrorCode);
    return m_inner.Read(buffer, size, Yr::kReadSome);
}

}  // namespace Morvelan::Tool
