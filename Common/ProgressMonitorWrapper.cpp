#include "Common/ProgressMonitorWrapper.h"

#include "Common/ExceptionPrinting.h"
#include "Yr/Exceptions.h"

namespace Morvelan::Common {
namespace {

// Calls `call` on the monitor unless it is null; a failure (or no monitor)
// yields a value-initialized result.
template <class Call>
auto Guard(ProgressMonitor* monitor, Call call) -> decltype(call(*monitor)) {
    using Result = decltype(call(*monitor));
    if (monitor != nullptr) {
        try {
            return call(*monitor);
        } catch (const Yr::OutOfMemoryException&) {
            // Printing needs memory too.
        } catch (const Yr::YrException& e) {
            DebugPrintEx(e);
        }
    }
    return Result();
}

}  // namespace

ProgressMonitorWrapper::ProgressMonitorWrapper(ProgressMonitor* monitor) : m_monitor(monitor) {}

ProgressMonitorWrapper::ProgressMonitorWrapper(const ProgressMonitorWrapper& other) = default;
ProgressMonitorWrapper::ProgressMonitorWrapper(ProgressMonitorWrapper&& other) noexcept = default;
ProgressMonitorWrapper& ProgressMonitorWrapper::operator=(const ProgressMonitorWrapper& other) =
    default;
ProgressMonitorWrapper& ProgressMonitorWrapper::operator=(ProgressMonitorWrapper&& other) noexcept =
    default;
ProgressMonitorWrapper::~ProgressMonitorWrapper() = default;

void ProgressMonitorWrapper::SetAcceptedRange(Yr::UInt64 minimum, Yr::UInt64 maximum) {
    m_acceptedMinimum = minimum;
    m_acceptedMaximum = maximum;
}

void ProgressMonitorWrapper::SetMaximum(Yr::UInt64 maximum) {
    Guard(m_monitor, [=](ProgressMonitor& monitor) { monitor.SetMaximum(maximum); });
}

Yr::UInt64 ProgressMonitorWrapper::GetMaximum() const {
    return Guard(m_monitor, [](ProgressMonitor& monitor) { return monitor.GetMaximum(); });
}

void ProgressMonitorWrapper::SetMinimum(Yr::UInt64 minimum) {
    Guard(m_monitor, [=](ProgressMonitor& monitor) { monitor.SetMinimum(minimum); });
}

Yr::UInt64 ProgressMonitorWrapper::GetMinimum() const {
    return Guard(m_monitor, [](ProgressMonitor& monitor) { return monitor.GetMinimum(); });
}

bool ProgressMonitorWrapper::IsCanceled() const {
    return Guard(m_monitor, [](ProgressMonitor& monitor) { return monitor.IsCanceled(); });
}

void ProgressMonitorWrapper::SetProgress(Yr::UInt64 progress) {
    if (m_acceptedMaximum != 0 && (progress < m_acceptedMinimum || progress > m_acceptedMaximum))
        return;
    Guard(m_monitor, [=](ProgressMonitor& monitor) { monitor.SetProgress(progress); });
}

void ProgressMonitorWrapper::Started() {
    Guard(m_monitor, [](ProgressMonitor& monitor) { monitor.Started(); });
}

void ProgressMonitorWrapper::Failed(const Yr::YrException& failure) {
    Guard(m_monitor, [&](ProgressMonitor& monitor) { monitor.Failed(failure); });
}

void ProgressMonitorWrapper::Done() {
    Guard(m_monitor, [](ProgressMonitor& monitor) { monitor.Done(); });
}

}  // namespace Morvelan::Common
