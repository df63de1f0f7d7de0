#include "Common/ProgressMonitorIBinaryChannel.h"

#include "Common/ProgressMonitorWrapper.h"
#include "Yr/ChannelArguments.h"

namespace Morvelan::Common {
namespace {
constexpr const char* kSourceUnit = "Common/ProgressMonitorIBinaryChannel";
}

ProgressMonitorIBinaryChannel::ProgressMonitorIBinaryChannel(Yr::IBinaryChannel& inner,
                                                             ProgressMonitor& monitor)
    : FilterIBinaryChannel(inner), m_monitor(monitor) {}

ProgressMonitorIBinaryChannel::ProgressMonitorIBinaryChannel(
    const Yr::Ref<Yr::IBinaryChannel>& inner, ProgressMonitor& monitor)
    : FilterIBinaryChannel(inner, kSourceUnit, __LINE__), m_monitor(monitor) {}

ProgressMonitorIBinaryChannel::~ProgressMonitorIBinaryChannel() = default;

Yr::UInt32 ProgressMonitorIBinaryChannel::Read(char* buffer, Yr::UInt32 size,
                                               Yr::ReadSomeModeSelector) {
    Yr::CheckTargetBuffer(buffer, size, kSourceUnit, __LINE__);
    const Yr::UInt32 count = m_inner.Read(buffer, size, Yr::kReadSome);
    if (count != 0) UpdateProgressMonitor(count);
    return count;
}

void ProgressMonitorIBinaryChannel::UpdateProgressMonitor(Yr::UInt32 count) {
    m_transferred += count;
    // The wrapper's guard keeps the monitor's failures out of the read.
    ProgressMonitorWrapper(&m_monitor).SetProgress(m_transferred);
}

}  // namespace Morvelan::Common
