#include "cli/MonitoredInput.h"

#include "Common/ProgressMonitorIBinaryChannel.h"
#include "Yr/YrException.h"
#include "cli/CancelableIBinaryChannel.h"
#include "cli/CommandSupport.h"

namespace Morvelan::Tool {
namespace {

// Records and trailers are read a few bytes at a time; the buffer turns
// that into large reads of the file or pipe.
constexpr Yr::UInt32 kInputBufferSize = 262144;

// A pipe has no size to tell.
Yr::UInt64 SizeIfKnown(const Yr::IBinaryChannel& input) {
    try {
        return input.GetAvailable();
    } catch (const Yr::YrException&) {
        return 0;
    }
}

std::unique_ptr<Yr::IBinaryChannel> CancelableOrNull(Yr::IBinaryChannel& input,
                                                     const Common::ProgressMonitor* monitor) {
    if (monitor == nullptr) return nullptr;
    return std::make_unique<CancelableIBinaryChannel>(input, *monitor);
}

std::unique_ptr<Yr::IBinaryChannel> MonitoredOrNull(Yr::IBinaryChannel* input,
                                                    Common::ProgressMonitor* monitor) {
    if (monitor == nullptr) return nullptr;
    return std::make_unique<Common::ProgressMonitorIBinaryChannel>(*input, *monitor);
}

}  // namespace

MonitoredInput::MonitoredInput(const std::string& argument, Common::ProgressMonitor* monitor)
    : m_input(OpenInput(argument)),
      m_size(SizeIfKnown(*m_input)),
      m_cancelable(CancelableOrNull(*m_input, monitor)),
      m_monitored(MonitoredOrNull(m_cancelable.get(), monitor)),
      m_buffered(m_monitored ? *m_monitored : *m_input, kInputBufferSize) {}

}  // namespace Morvelan::Tool
