#include "Common/ProgressMonitorOBinaryChannel.h"

#include "Common/ProgressMonitorWrapper.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common {
namespace {
constexpr const char* kSourceUnit = "Common/ProgressMonitorOBinaryChannel";
}

ProgressMonitorOBinaryChannel::ProgressMonitorOBinaryChannel(Yr::OBinaryChannel& inner,
                                                             ProgressMonitor& monitor)
    : FilterOBinaryChannel(inner), m_monitor(monitor) {}

ProgressMonitorOBinaryChannel::ProgressMonitorOBinaryChannel(
    const Yr::Ref<Yr::OBinaryChannel>& inner, ProgressMonitor& monitor)
    : FilterOBinaryChannel(inner, kSourceUnit, __LINE__), m_monitor(monitor) {}

ProgressMonitorOBinaryChannel::~ProgressMonitorOBinaryChannel() = default;

void ProgressMonitorOBinaryChannel::Write(const char* buffer, Yr::UInt32 size) {
    if (buffer == nullptr)
        throw Yr::IllegalArgumentException("Invalid source buffer: source buffer is null.",
                                           kSourceUnit, __LINE__, Yr::kIllegalArgumentErrorCode);
    if (size == 0)
        throw Yr::IllegalArgumentException("Invalid source buffer: buffer size is 0.", kSourceUnit,
                                           __LINE__, Yr::kIllegalArgumentErrorCode);
    m_inner.Write(buffer, size);
    UpdateProgressMonitor(size);
}

void ProgressMonitorOBinaryChannel::UpdateProgressMonitor(Yr::UInt32 count) {
    m_transferred += count;
    // The wrapper's guard keeps the monitor's failures out of the write.
    ProgressMonitorWrapper(&m_monitor).SetProgress(m_transferred);
}

}  // namespace Morvelan::Common
